// A model and its drawing: what follows the view, or a sheet of four views.
import { engine, task } from './engine.js';
import { counted, save, stemOf } from './files.js';
import { drawLines } from './ink.js';

const byId = (id) => document.getElementById(id);
const SHEET = ['front', 'top', 'left', 'iso'];
const LARGE = 200000; // triangles; of a model with more, four views are drawn when asked for

let viewer, model, file, drawing, drawnIn, picture;
let version = 0; // of what is shown; what was begun before is not shown any more

const chosen = (name) => document.querySelector(`#settings input[name=${name}]:checked`).value;
const tell = (text) => { byId('status').textContent = text; };

function options() {
  const hidden = chosen('hidden');
  const isSheet = chosen('show') === 'sheet';
  return {
    isSheet,
    hiddenStyle: hidden,
    drawing: { crease: Number(byId('crease').value), hidden: hidden === 'none' ? 'none' : isSheet ? 'principal' : 'all' },
  };
}

// Grey lines in place of dashes, in a picture.
const greyed = (svg) => svg.replace(/<g class="hidden"[^]*?<\/g>\n<\/g>/g, (group) =>
  group.replaceAll(/ stroke-dasharray="[^"]*"/g, '').replace('<g class="hidden"', '<g class="hidden" stroke="#a3abb3"'));

function sheetOptions({ isSheet, hiddenStyle, drawing: wanted }) {
  const title = stemOf(file.name);
  const style = { ...wanted, title, hiddenStyle: hiddenStyle === 'none' ? 'none' : 'dashed' };
  return isSheet ? { ...style, views: SHEET } : { ...style, views: [viewer.view()] };
}

async function redraw() {
  if (!model) return;
  const mine = ++version;
  const isCurrent = () => mine === version;
  const wanted = options();
  byId('crease-text').textContent = `${wanted.drawing.crease}°`;
  byId('drawing').classList.add('busy');
  const begin = performance.now();
  const drawn = await task(async (control) => {
    if (wanted.isSheet) return model.sheet('svg', { ...sheetOptions(wanted), ...control });
    return model.draw({ view: viewer.view(), ...wanted.drawing, ...control });
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
  let picturedAs = 'Four views';
  if (drawing) {
    const hiddenCount = drawing.hidden.reduce((sum, h) => sum + h, 0);
    picturedAs = counted(drawing.hidden.length - hiddenCount, 'visible line') + (hiddenCount ? `, ${hiddenCount.toLocaleString('en')} hidden` : '');
  }
  byId('drawing').setAttribute('aria-label', `${wanted.isSheet ? 'Four views' : 'Drawing'} of ${file.name}: ${picturedAs}`);
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
  return { show() {}, clear() {}, look(chosenName) { name = chosenName; }, view: () => name };
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
  viewer.show(next.mesh, model.info);
  viewer.look('iso');
  if (model.info.triangles > LARGE) document.querySelector('#settings input[value=view]').checked = true;
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
  byId('crease').addEventListener('input', () => { byId('crease-text').textContent = `${byId('crease').value}°`; });
  new ResizeObserver(guarded(repaint)).observe(byId('drawing'));
  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey || event.target.closest('input, button') || !model) return;
    const name = { 1: 'front', 2: 'top', 3: 'left', 4: 'iso' }[event.key];
    if (name) look(name);
  });
}
