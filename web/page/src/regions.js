// Two drawings and their combinations, as pictures with areas.
import { engine, task } from './engine.js';
import { counted, number, save, stemOf } from './files.js';
import { boxOf, drawRegions } from './ink.js';

const byId = (id) => document.getElementById(id);
const OPS = {
  union: ['Union', 'A ∪ B'], intersection: ['Intersection', 'A ∩ B'], 'a-b': ['A without B', 'A − B'], 'b-a': ['B without A', 'B − A'],
  xor: ['In one only', 'A ⊕ B'],
};

let files = [], combined, pictures = [];

function element(name, properties = {}, ...children) {
  const made = Object.assign(document.createElement(name), properties);
  made.append(...children);
  return made;
}

const areaText = (area) => number(area) + (combined.unit ? ` ${combined.unit}²` : '');

function button(text, label, onClick) {
  const made = element('button', { type: 'button', textContent: text });
  made.setAttribute('aria-label', label);
  made.addEventListener('click', onClick);
  return made;
}

async function saveAs(ops, format, onError) {
  try {
    const result = await task(async (control) => {
      const zbr = await engine();
      return zbr.combineDrawings(...files.map((file) => ({ data: file, name: file.name })), { ops, formats: [format], ...control });
    });
    if (!result) return;
    const what = ops.length === 1 ? ops[0] : 'combinations';
    save(`${stemOf(files[0].name)}-${stemOf(files[1].name)}-${what}.${format}`, result.files[format]);
  } catch (error) {
    onError(error);
  }
}

function card(result, operands, box, onError) {
  const [title, formula] = OPS[result.name];
  const canvas = element('canvas');
  canvas.setAttribute('role', 'img');
  canvas.setAttribute('aria-label', `${title}: area ${areaText(result.area)}`);
  pictures.push(() => drawRegions(canvas, box, operands, result.region));
  const saves = element('span', {}, button('DXF', `Save ${title} as DXF`, () => saveAs([result.name], 'dxf', onError)),
    button('GeoJSON', `Save ${title} as GeoJSON`, () => saveAs([result.name], 'geojson', onError)));
  const counts = [counted(result.polygons, 'polygon'), counted(result.holes, 'hole'), counted(result.vertices, 'vertex', 'vertices')];
  const made = element('article', { className: 'card' },
    element('h2', {}, element('span', { textContent: title }), element('span', { className: 'area', textContent: areaText(result.area) })),
    canvas, element('div', { className: 'row' }, element('small', { textContent: `${formula} · ${counts.join(', ')}` }), saves));
  made.dataset.op = result.name;
  return made;
}

function operandText({ name, area }, i) {
  return element('p', { className: 'operand' }, element('b', { textContent: 'AB'[i] }), element('span', { textContent: name }),
    element('small', { className: 'area', textContent: areaText(area) }));
}

function showNotes(notes) {
  byId('notes').replaceChildren(...notes.map(({ file, line, text }) => element('li', { textContent: `${file}${line ? `:${line}` : ''}: ${text}` })));
}

function showOne(onError) {
  const { operands } = combined;
  const canvas = element('canvas');
  canvas.setAttribute('role', 'img');
  canvas.setAttribute('aria-label', `${operands[0].name}: area ${areaText(operands[0].area)}`);
  const box = boxOf([operands[0].region]);
  pictures.push(() => drawRegions(canvas, box, [operands[0].region], operands[0].region));
  const { polygons, holes, vertices } = operands[0];
  const counts = [counted(polygons, 'polygon'), counted(holes, 'hole'), counted(vertices, 'vertex', 'vertices')].join(', ');
  byId('operands').replaceChildren(operandText(operands[0], 0));
  byId('results').replaceChildren(element('article', { className: 'card' },
    element('h2', {}, element('span', { textContent: 'What the contours bound' })), canvas,
    element('small', { textContent: `${counts}. Drop a second drawing to combine the two.` })));
  return onError;
}

function showTwo(onError) {
  const { operands, results } = combined;
  const regions = operands.map((operand) => operand.region);
  const box = boxOf(regions);
  const swap = button('Swap', 'Swap A and B', () => openDrawings([...files].reverse(), onError).catch(onError));
  const all = Object.keys(OPS);
  const saves = ['dxf', 'geojson', 'svg'].map((format) =>
    button(`All as ${format === 'geojson' ? 'GeoJSON' : format.toUpperCase()}`, `Save all combinations as ${format}`, () => saveAs(all, format, onError)));
  byId('operands').replaceChildren(...operands.map(operandText), swap, element('span', { className: 'saves' }, ...saves));
  byId('results').replaceChildren(...results.map((result) => card(result, regions, box, onError)));
}

/** One drawing is shown; a second one is combined with it. */
export async function openDrawings(opened, onError) {
  const all = (opened.length === 1 && files.length === 1 && !byId('regions').hidden ? [...files, ...opened] : opened).slice(0, 2);
  const begin = performance.now();
  const result = await task(async (control) => {
    const zbr = await engine();
    const inputs = all.map((file) => ({ data: file, name: file.name }));
    if (inputs.length === 2) return zbr.combineDrawings(...inputs, { ops: Object.keys(OPS), ...control });
    const one = await zbr.readDrawing(inputs[0], control);
    return { ...one, operands: [one], results: [] };
  });
  if (!result) return false;
  files = all;
  combined = result;
  pictures = [];
  byId('regions').hidden = false;
  byId('subject').textContent = files.map((file) => file.name).join(' and ');
  showNotes(combined.notes);
  if (files.length === 2) showTwo(onError);
  else showOne(onError);
  byId('status').textContent = `${files.length === 2 ? 'Combined' : 'Read'} in ${Math.round(performance.now() - begin)} ms`;
  repaint();
  return true;
}

export function repaint() {
  if (!byId('regions').hidden) for (const picture of pictures) picture();
}

export function closeDrawings() {
  byId('regions').hidden = true;
  files = [];
  pictures = [];
}
