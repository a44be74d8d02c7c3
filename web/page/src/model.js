// A model and its drawing: what follows the view, a sheet of four views, or a section.
import { engine, task } from './engine.js';
import { counted, save, stemOf } from './files.js';
import { drawLines } from './ink.js';

const byId = (id) => document.getElementById(id);
const SHEET = ['front', 'top', 'left', 'iso'];
const LARGE = 200000; // triangles; of a model with more, four views are drawn when asked for

let viewer, model, file, drawing, drawnIn, picture;
let version = 0; // of what is shown; what was begun before is not shown any more

const chosen = (name) => document.querySelector(`#model input[name=${name}]:checked`).value;
const choose = (name, value) => { document.querySelector(`#model input[name=${name}][value=${value}]`).checked = true; };
const tell = (text) => { byId('status').textContent = text; };

const isOn = (id) => byId(id).checked && !byId(id).disabled;

// The plane of the section, as the library takes it: a round number of the model's unit.
function plane() {
  const axis = chosen('axis'), k = 'XYZ'.indexOf(axis);
  const { low, high } = model.info;
  const offset = low[k] + ((high[k] - low[k]) * Number(byId('offset').value)) / 100;
  const digits = 3 - Math.floor(Math.log10(high[k] - low[k] || 1));
  return `${axis}=${Number(offset.toFixed(Math.min(Math.max(digits, 0), 12)))}`;
}

function options() {
  const hidden = chosen('hidden'), show = chosen('show');
  return {
    show,
    isSheet: show !== 'view' || isOn('centre-lines'),
    hiddenStyle: hidden,
    views: show === 'sheet' ? SHEET : [show === 'section' ? { section: plane() } : viewer.view()],
    drawing: {
      crease: Number(byId('crease').value),
      hidden: hidden === 'none' ? 'none' : show === 'view' ? 'all' : 'principal',
      centreLines: isOn('centre-lines'),
      curves: isOn('curves'),
      axes: chosen('axes'),
    },
  };
}

// What the settings mean for each other.
function tidySettings() {
  const show = chosen('show');
  byId('plane').hidden = show !== 'section';
  byId('hidden-lines').hidden = show === 'section'; // which have none
  byId('perspective').disabled = show !== 'view' || (viewer && !viewer.setPerspective);
  byId('centre-lines').disabled = isOn('perspective');
  byId('crease-text').textContent = `${byId('crease').value}°`;
  if (!model) return;
  byId('offset-text').textContent = plane().slice(2);
  viewer.setPerspective?.(isOn('perspective'));
}

// Grey lines in place of dashes, in a picture.
const greyed = (svg) => svg.replace(/<g class="hidden"[^]*?<\/g>\n<\/g>/g, (group) =>
  group.replaceAll(/ stroke-dasharray="[^"]*"/g, '').replace('<g class="hidden"', '<g class="hidden" stroke="#a3abb3"'));

function sheetOptions({ hiddenStyle, views, drawing: wanted }) {
  return { ...wanted, views, title: stemOf(file.name), hiddenStyle: hiddenStyle === 'none' ? 'none' : 'dashed' };
}

async function redraw() {
  if (!model) return;
  const mine = ++version;
  const isCurrent = () => mine === version;
  tidySettings();
  const wanted = options();
  byId('drawing').classList.add('busy');
  const begin = performance.now();
  const drawn = await task(async (control) => {
    if (wanted.isSheet) return model.sheet('svg', { ...sheetOptions(wanted), ...control });
    return model.draw({ view: wanted.views[0], ...wanted.drawing, ...control });
  });
  if (!isCurrent()) return;
  byId('drawing').classList.remove('busy');
  if (!drawn) return tell('Cancelled. Turn the model or change a setting to draw again.');
  drawnIn = performance.now() - begin;
  drawing = wanted.isSheet ? undefined : drawn;
  showPicture(wanted.isSheet ? (wanted.hiddenStyle === 'grey' ? greyed(drawn) : drawn) : undefined);
  describe(wanted);
  await repaint();
  return undefined;
}

function showPicture(svg) {
  const image = byId('drawing').querySelector('img');
  if (picture) URL.revokeObjectURL(picture);
  picture = svg && URL.createObjectURL(new Blob([svg], { type: 'image/svg+xml' }));
  image.hidden = !svg;
  byId('drawing').querySelector('canvas').hidden = Boolean(svg);
  if (svg) image.src = picture;
}

function describe(wanted) {
  const { triangles, shells, openEdges, roughCreases } = model.info;
  const parts = [counted(triangles, 'triangle'), counted(shells, 'shell')];
  if (openEdges > 0) parts.push(counted(openEdges, 'open edge'));
  let picturedAs = { sheet: 'Four views', section: `Section ${wanted.views[0].section}`, view: 'This view with centre lines' }[wanted.show];
  if (drawing) {
    const hiddenCount = drawing.hidden.reduce((sum, h) => sum + h, 0);
    picturedAs = counted(drawing.hidden.length - hiddenCount, 'visible line') + (hiddenCount ? `, ${hiddenCount.toLocaleString('en')} hidden` : '');
  }
  byId('drawing').setAttribute('aria-label', `Drawing of ${file.name}: ${picturedAs}`);
  const advice = roughCreases && wanted.drawing.crease <= 30 ? ' · a rough surface: a larger crease angle draws fewer lines' : '';
  tell(`${parts.join(', ')} · ${picturedAs} · drawn in ${Math.round(drawnIn)} ms${advice}`);
}

export async function repaint() {
  if (!model || !drawing) return;
  const mine = version;
  await drawLines(byId('drawing').querySelector('canvas'), drawing, options().hiddenStyle, () => mine === version && drawing);
  if (mine === version) byId('drawing').dataset.version = mine;
}

async function saveAs(format) {
  if (!model) return;
  const wanted = options();
  const data = await task(async (control) => model.sheet(format, { ...sheetOptions(wanted), ...control }));
  if (!data) return;
  save(`${stemOf(file.name)}.${format}`, format === 'svg' && wanted.hiddenStyle === 'grey' ? greyed(data) : data);
}

// Where a browser shows nothing in three dimensions the named views can still be drawn.
function plainViewer(reason) {
  let name = 'iso';
  byId('viewer').textContent = `No three-dimensional view: ${reason}`;
  return { show() {}, clear() {}, stand() {}, turn: () => false, look(chosenName) { name = chosenName; }, view: () => name };
}

async function makeViewer(onSettled) {
  const { Viewer } = await import('./viewer.js');
  try {
    return new Viewer(byId('viewer'), onSettled);
  } catch (error) {
    return plainViewer(error.message);
  }
}

/** Opens a model; `beside` are files that it may name. */
export async function openModel(opened, beside, onError) {
  const crease = Number(byId('crease').value);
  const next = await task(async (control) => {
    const zbr = await engine();
    const others = Object.fromEntries(beside.map((other) => [other.name, other]));
    const read = await zbr.readModel(opened, { name: opened.name, crease, beside: others, ...control });
    return { read, mesh: await read.mesh(control) };
  });
  if (!next) return false;
  await closeModel();
  file = opened;
  model = next.read;
  byId('model').hidden = false;
  viewer ??= await makeViewer(() => redraw().catch(onError));
  choose('axes', model.info.axes);
  viewer.show(next.mesh, model.info);
  viewer.look('iso');
  if (model.info.triangles > LARGE) choose('show', 'view');
  byId('subject').textContent = file.name;
  await redraw();
  return true;
}

export async function closeModel() {
  ++version;
  viewer?.clear();
  const old = model;
  model = drawing = undefined;
  byId('model').hidden = true;
  byId('drawing').classList.remove('busy');
  await old?.free();
}

// On a page that is longer than the screen the arrow keys turn the model only where it has the focus.
const scrolls = () => document.documentElement.scrollHeight > document.documentElement.clientHeight;

export function prepareModel(onError) {
  const guarded = (work) => (...args) => work(...args)?.catch?.(onError);
  const look = (name) => {
    if (!model) return;
    viewer.look(name);
    guarded(redraw)();
  };
  for (const button of document.querySelectorAll('[data-view]')) button.addEventListener('click', () => look(button.dataset.view));
  for (const button of document.querySelectorAll('[data-save]')) button.addEventListener('click', guarded(() => saveAs(button.dataset.save)));
  byId('settings').addEventListener('change', guarded(redraw));
  byId('look').addEventListener('change', () => {
    viewer.stand(chosen('axes'));
    look('iso');
  });
  byId('settings').addEventListener('input', tidySettings);
  new ResizeObserver(guarded(repaint)).observe(byId('drawing'));
  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey || !model) return;
    const name = { 1: 'front', 2: 'top', 3: 'left', 4: 'iso' }[event.key];
    if (name) return look(name);
    const isForViewer = byId('viewer').contains(event.target) || !(scrolls() || event.target.closest('input'));
    if (isForViewer && viewer.turn(event.key, event.shiftKey)) event.preventDefault();
    return undefined;
  });
}
