// The page in Chromium: every flow, broken files, cancelling, small and dark screens; and the package's bits there.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, mkdtempSync, readFileSync, readdirSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { packed3mf, random } from '../../test/package.js';
import { root, serve, shoot, startBrowser } from './browser.js';

const scratch = mkdtempSync(join(tmpdir(), 'zbr-page-'));
const server = await serve(join(root, 'build/web/page'));
const browser = await startBrowser();
after(async () => {
  await browser.close();
  server.close();
});

async function openPage(options = {}) {
  const context = await browser.newContext({ viewport: { width: 1366, height: 800 }, acceptDownloads: true, ...options });
  const page = await context.newPage();
  page.on('pageerror', (error) => assert.fail(error.stack));
  await page.goto(server.url);
  return page;
}

const statusIs = (page, pattern, timeout = 60000) =>
  page.waitForFunction((text) => new RegExp(text).test(document.querySelector('#status').textContent), pattern, { timeout });
const file = (name, contents) => ({ name, mimeType: 'text/plain', buffer: Buffer.from(contents) });
const example = (name) => file(name, readFileSync(join(root, 'examples', name)));
const drop = (page, ...files) => page.setInputFiles('#files', files.map((given) => (typeof given === 'string' ? example(given) : given)));

async function saved(page, selector) {
  const [download] = await Promise.all([page.waitForEvent('download'), page.click(selector)]);
  return { name: download.suggestedFilename(), data: readFileSync(await download.path()) };
}

// How much of a canvas or a screenshot's part is not the colour of its corner.
const inked = (page, selector) => page.$eval(selector, (canvas) => {
  const { data } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
  let count = 0;
  for (let i = 3; i < data.length; i += 4) count += data[i] > 0 ? 1 : 0;
  return count;
});

test('a model: the drawing follows the view, sheets, creases, files', async () => {
  const before = server.sent.bytes;
  const page = await openPage();
  await shoot(page, 'welcome');
  await drop(page, 'housing.obj');
  await statusIs(page, 'visible lines?, [0-9]+ hidden');
  assert.ok(server.sent.bytes - before < 1.2e6, `${server.sent.bytes - before} bytes`);
  await page.waitForTimeout(300);
  await shoot(page, 'model');
  const dashed = await inked(page, '#drawing canvas');
  assert.ok(dashed > 3000);
  await page.click('label:has([value=none])');
  await statusIs(page, 'visible lines? · drawn');
  await page.waitForTimeout(300);
  assert.ok((await inked(page, '#drawing canvas')) < dashed);
  const version = async () => Number(await page.getAttribute('#drawing', 'data-version'));
  const isDrawnAnew = (old) => page.waitForFunction((v) => document.querySelector('#drawing').dataset.version > v, old);
  const iso = { version: await version(), ink: await inked(page, '#drawing canvas') };
  await page.evaluate(() => document.activeElement.blur()); // the keys turn the model all the same
  for (let i = 0; i < 3; ++i) await page.keyboard.press('ArrowLeft');
  await isDrawnAnew(iso.version);
  assert.notEqual(await inked(page, '#drawing canvas'), iso.ink);
  const turned = await version();
  await page.keyboard.press('1');
  await isDrawnAnew(turned);
  await page.click('label:has([value=grey])');
  await statusIs(page, 'hidden · drawn');
  const svg = await saved(page, '[data-save=svg]');
  assert.equal(svg.name, 'housing.svg');
  assert.match(svg.data.toString(), /<g class="hidden" stroke="#a3abb3"/);
  assert.doesNotMatch(svg.data.toString(), /dasharray/);
  const label = () => page.getAttribute('#drawing', 'aria-label');
  const zUp = { version: await version(), label: await label() };
  await page.click('label:has([name=axes][value=y])');
  await isDrawnAnew(zUp.version);
  await shoot(page, 'y-up');
  const yUp = await version();
  await page.keyboard.press('1');
  await isDrawnAnew(yUp);
  assert.notEqual(await label(), zUp.label);
  await page.click('label:has([value=sheet])');
  await statusIs(page, 'Four views');
  await page.waitForTimeout(500);
  await shoot(page, 'sheet');
  assert.match((await saved(page, '[data-save=dxf]')).data.toString(), /HIDDEN[^]*EOF/);
  assert.match((await saved(page, '[data-save=pdf]')).data.toString('latin1'), /^%PDF/);
  await page.fill('#crease', '80');
  await page.dispatchEvent('#crease', 'change');
  await page.waitForFunction(() => document.querySelector('#crease-text').textContent === '80°');
  await page.close();
});

test('sections, perspectives, centre lines and arcs', async () => {
  const page = await openPage();
  await drop(page, 'housing.obj');
  await statusIs(page, 'visible');
  const isDrawnAs = async (change, pattern) => {
    await page.evaluate(() => { document.querySelector('#status').textContent = ''; });
    await change();
    await statusIs(page, pattern);
  };
  const picture = () => page.$eval('#drawing img', async (image) => (await fetch(image.src)).text());
  const choose = (value) => page.click(`label:has([value=${value}])`);
  await isDrawnAs(() => choose('section'), 'Section X=');
  assert.match(await picture(), /class="hatching"/);
  await isDrawnAs(() => choose('Y'), 'Section Y=');
  await isDrawnAs(async () => {
    await page.fill('#offset', '70');
    await page.dispatchEvent('#offset', 'change');
  }, 'Section Y=');
  await shoot(page, 'section');
  const at = await page.textContent('#offset-text');
  assert.ok((await page.textContent('#status')).includes(`Section Y=${at} `));
  assert.match((await saved(page, '[data-save=dxf]')).data.toString(), /SECTION[^]*EOF/);
  const version = async () => Number(await page.getAttribute('#drawing', 'data-version'));
  const isDrawnAnew = async (change) => {
    const before = await version();
    await change();
    await page.waitForFunction((v) => Number(document.querySelector('#drawing').dataset.version) > v, before);
  };
  await isDrawnAnew(() => choose('view'));
  const ink = await inked(page, '#drawing canvas');
  await isDrawnAnew(() => page.click('label:has(#perspective)'));
  assert.notEqual(await inked(page, '#drawing canvas'), ink);
  assert.ok(await page.isDisabled('#centre-lines'));
  await shoot(page, 'perspective');
  await isDrawnAs(() => page.click('label:has(#perspective)'), 'visible');
  await isDrawnAs(() => page.keyboard.press('1'), 'visible'); // oblique views have none
  await isDrawnAs(() => page.click('label:has(#centre-lines)'), 'with centre lines');
  assert.match(await picture(), /class="centre/);
  await shoot(page, 'centre-lines');
  const arcs = (await saved(page, '[data-save=dxf]')).data.toString();
  await isDrawnAs(() => page.click('label:has(#curves)'), 'with centre lines');
  assert.match(arcs, /\n(CIRCLE|ARC)\n/);
  assert.doesNotMatch((await saved(page, '[data-save=dxf]')).data.toString(), /\n(CIRCLE|ARC)\n/);
  await page.close();
});

test('two drawings: five pictures with areas, files', async () => {
  const page = await openPage();
  await drop(page, 'bracket.dxf');
  await statusIs(page, 'Read in');
  await drop(page, 'gasket.dxf');
  await page.waitForSelector('.card[data-op=xor]');
  await page.waitForTimeout(300);
  await shoot(page, 'drawings');
  const areas = await page.$$eval('.card .area', (all) => all.map((a) => parseFloat(a.textContent.replaceAll(',', ''))));
  const [union, both, ab, ba, xor] = areas;
  assert.ok(Math.abs(union - both - xor) < 0.3 && Math.abs(xor - ab - ba) < 0.3, `${areas}`);
  const json = JSON.parse((await saved(page, '[data-op=union] button:has-text("GeoJSON")')).data);
  assert.equal(json.features.length, 1);
  assert.match((await saved(page, 'button:has-text("All as DXF")')).data.toString(), /intersection[^]*EOF/);
  await page.click('button:has-text("Swap")');
  await page.waitForFunction(() => document.querySelector('.operand').textContent.includes('gasket'));
  await drop(page, 'housing.obj');
  await statusIs(page, 'visible');
  assert.ok(await page.isHidden('#regions'));
  await page.close();
});

test('broken files say why in a line', async () => {
  const page = await openPage();
  const complaint = async (...files) => {
    await drop(page, ...files);
    await page.waitForSelector('#alert:not([hidden])');
    const text = await page.textContent('#alert-text');
    assert.ok(!text.includes('\n'), text);
    await page.click('#alert-close');
    return text;
  };
  assert.match(await complaint(file('part.stl', 'solid x\nfacet normal')), /^part\.stl: no triangles/);
  assert.match(await complaint(file('part.obj', 'v 1 2 x\n')), /^part\.obj:1: /);
  assert.match(await complaint(file('scene.gltf', '{"asset":')), /^scene\.gltf/);
  assert.match(await complaint(file('a.dxf', 'AC1027\0binary')), /^a\.dxf/);
  assert.match(await complaint(file('a.wkt', 'POLYGON ((0 0, 1 1')), /^a\.wkt:1: /);
  assert.match(await complaint(file('photo.jpg', 'x')), /not known as a drawing(?!.*--)/);
  assert.match(await complaint('bracket.dxf', 'gasket.dxf', 'bracket.dxf'), /two are combined/);
  assert.match(await complaint(file('part.3mf', 'PK')), /^part\.3mf: is no ZIP archive/);
  const leftOut = await complaint('housing.obj', 'bracket.dxf', file('second.stl', ''));
  assert.match(leftOut, /^housing\.obj is shown; left out: bracket\.dxf, second\.stl\./);
  await drop(page, file('scene.gltf', '{"asset":'));
  await page.waitForSelector('#alert:not([hidden])');
  await shoot(page, 'broken');
  await drop(page, file('blocks.3mf', packed3mf()));
  await statusIs(page, '24 triangles.*visible');
  assert.ok(await page.isHidden('#alert'));
  await page.close();
});

test('without WebGL models are drawn all the same', async () => {
  const page = await openPage();
  await page.evaluate(() => { HTMLCanvasElement.prototype.getContext = ((old) => function (kind, ...rest) { return kind === '2d' ? old.call(this, kind, ...rest) : null; })(HTMLCanvasElement.prototype.getContext); });
  await drop(page, 'housing.obj');
  await statusIs(page, 'visible');
  assert.match(await page.textContent('#viewer'), /No three-dimensional view/);
  await page.click('[data-view=front]');
  await page.waitForFunction(() => document.querySelector('#drawing').dataset.version > 1);
  await page.close();
});

test('small and dark screens', async () => {
  const page = await openPage({ viewport: { width: 390, height: 844 }, colorScheme: 'dark', deviceScaleFactor: 2, hasTouch: true });
  await shoot(page, 'small-welcome');
  await page.click('[data-example=housing]');
  await statusIs(page, 'visible');
  await page.waitForTimeout(300);
  await page.screenshot({ path: join(process.env.ZBR_SCREENSHOTS ?? join(root, 'build/web/screenshots'), 'small-model.png'), fullPage: true });
  const wide = await page.evaluate(() => document.documentElement.scrollWidth > document.documentElement.clientWidth);
  assert.ok(!wide, 'nothing is cut off at the side');
  await page.setViewportSize({ width: 1366, height: 800 });
  await page.waitForTimeout(400);
  await shoot(page, 'dark-model');
  await page.close();
  const plates = await openPage({ colorScheme: 'dark' });
  await plates.click('[data-example=plates]');
  await plates.waitForSelector('.card[data-op=xor]');
  await plates.waitForTimeout(300);
  await shoot(plates, 'dark-drawings');
  await plates.close();
});

// A lobed body whose points are where a scanner's noise puts them, as OBJ.
function scan(rows = 60, columns = 120) {
  const below = random(7), lines = [];
  for (let i = 0; i <= rows; ++i) {
    for (let j = 0; j < columns; ++j) {
      const a = (Math.PI * i) / rows, b = (2 * Math.PI * j) / columns, sin = Math.sin(a);
      const r = 40 + 8 * Math.sin(3 * b) * sin ** 2 + (sin ** 2 * below(1000)) / 1000;
      lines.push(`v ${r * sin * Math.cos(b)} ${r * sin * Math.sin(b)} ${1.4 * r * Math.cos(a)}`);
    }
  }
  for (let i = 0; i < rows; ++i) {
    for (let j = 0; j < columns; ++j) {
      const at = (k, l) => (i + k) * columns + ((j + l) % columns) + 1;
      lines.push(`f ${at(0, 0)} ${at(1, 0)} ${at(1, 1)} ${at(0, 1)}`);
    }
  }
  return file('scan.obj', lines.join('\n'));
}

test('a scan reads at the first angle, and is said to be rough', async () => {
  const page = await openPage();
  await drop(page, scan());
  await statusIs(page, 'visible lines.*a rough surface');
  await page.waitForTimeout(300);
  await shoot(page, 'scan');
  const status = await page.textContent('#status'); // 107 with the silhouettes of facets
  assert.ok(Number(/([0-9,]+) visible/.exec(status)[1].replace(',', '')) < 80, status);
  await page.fill('#crease', '80');
  await page.dispatchEvent('#crease', 'change');
  await statusIs(page, 'visible.* ms$');
  await page.close();
});

// Boxes on a plate, as binary STL.
function boxes(side) {
  const data = new DataView(new ArrayBuffer(84 + 50 * 12 * side * side));
  data.setUint32(80, 12 * side * side, true);
  const corners = [[0, 2, 1], [1, 2, 3], [4, 5, 6], [5, 7, 6], [0, 1, 4], [1, 5, 4], [2, 6, 3], [3, 6, 7], [0, 4, 2], [2, 4, 6], [1, 3, 5], [3, 7, 5]];
  let at = 84;
  for (let k = 0; k < side * side; ++k) {
    const x = 2 * (k % side), y = 2 * Math.floor(k / side), height = 1 + ((7 * k) % 13);
    for (const corner of corners) {
      at += 12;
      for (const v of corner) {
        [x + (v & 1), y + ((v >> 1) & 1), height * (v >> 2)].forEach((value) => { data.setFloat32(at, value, true); at += 4; });
      }
      at += 2;
    }
  }
  return data;
}

// Presses Escape as soon as a stage is shown, before whatever the worker says next.
const cancelAt = (page, stage) => page.evaluate((wanted) => {
  const shown = document.querySelector('#stage');
  new MutationObserver((_, observer) => {
    if (shown.textContent !== wanted) return;
    observer.disconnect();
    document.body.dispatchEvent(new KeyboardEvent('keydown', { key: 'Escape', bubbles: true }));
  }).observe(shown, { childList: true });
}, stage);

test('a million triangles do not freeze the page, and can be cancelled', { timeout: 1800000 }, async () => {
  const model = join(scratch, 'boxes.stl');
  writeFileSync(model, boxes(300));
  const page = await openPage();
  page.setDefaultTimeout(600000);
  await cancelAt(page, 'joining triangles');
  await page.setInputFiles('#files', model);
  await page.waitForFunction(() => document.querySelector('#stage').textContent === 'joining triangles');
  await page.waitForSelector('#progress', { state: 'hidden' });
  assert.ok(await page.isVisible('#welcome'));
  await cancelAt(page, 'removing hidden lines');
  await page.setInputFiles('#files', model);
  await statusIs(page, 'Cancelled', 600000);
  // Work that is done on the page's own thread lets no timer run while it lasts, however long that is.
  await page.evaluate(() => {
    window.turns = {};
    const stage = document.querySelector('#stage'), drawing = document.querySelector('#drawing');
    setInterval(() => {
      if (drawing.classList.contains('busy')) window.turns[stage.textContent] = (window.turns[stage.textContent] ?? 0) + 1;
    }, 5);
  });
  await page.focus('#viewer');
  await page.keyboard.press('ArrowLeft');
  await statusIs(page, '1,080,000 triangles.*visible', 600000);
  const turns = await page.evaluate(() => window.turns);
  for (const stage of ['joining triangles', 'removing hidden lines']) assert.ok(turns[stage] >= 5, JSON.stringify(turns));
  console.log(await page.textContent('#status'));
  await page.waitForFunction(() => document.querySelector('#drawing').dataset.version > 1);
  await shoot(page, 'million');
  await page.close();
});

test('the same bits as the native library', { timeout: 120000 }, async () => {
  const build = join(root, 'build');
  const files = await serve(join(build, 'web/web/package'), join(build, 'web/tests/reliability/fingerprint'), join(root, 'web/test'));
  const page = await browser.newPage();
  await page.goto(`${files.url}digests.js`); // something of the same origin
  await page.setContent('<script>Module = { text: "", print(line) { Module.text += line + "\\n"; } };</script>');
  await page.addScriptTag({ url: `${files.url}zbr-fingerprint.js` });
  await page.waitForFunction(() => Module.text.split('\n').length > 10, null, { timeout: 100000 });
  assert.equal(await page.evaluate(() => Module.text), readFileSync(join(root, 'tests/reliability/fingerprint/expected.txt'), 'utf8'));
  const corpus = process.env.ZBR_POLYGON_CORPUS ?? join(root, '../shared/data/polygons'), native = process.env.ZBR_CORPUS ?? join(build, 'release/tests/corpus/zbr-corpus');
  if (existsSync(corpus) && existsSync(native)) {
    const lines = readdirSync(corpus).filter((name) => name.endsWith('.jsonl'))
      .flatMap((name) => readFileSync(join(corpus, name), 'utf8').split('\n').filter(Boolean));
    const ours = await page.evaluate(async ([url, all]) => {
      const { digestOfRecord } = await import(`${url}digests.js`);
      const zbr = await (await import(`${url}index.js`)).load();
      return all.map((line) => digestOfRecord(zbr, line));
    }, [files.url, lines]);
    assert.deepEqual(ours.sort(), execFileSync(native, [corpus, '--digest'], { encoding: 'utf8' }).trim().split('\n').sort());
  }
  await page.close();
  files.close();
});
