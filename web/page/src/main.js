// What is dropped or chosen goes to the part of the page that shows it.
import bracketUrl from 'examples/bracket.dxf?url';
import gasketUrl from 'examples/gasket.dxf?url';
import housingUrl from 'examples/housing.obj?url';

import { cancel, isBusy } from './engine.js';
import { isDrawing, isModel } from './files.js';
import { closeModel, openModel, prepareModel, repaint as repaintModel } from './model.js';
import { closeDrawings, openDrawings, repaint as repaintRegions } from './regions.js';

const byId = (id) => document.getElementById(id);
const EXAMPLES = { housing: { 'housing.obj': housingUrl }, plates: { 'bracket.dxf': bracketUrl, 'gasket.dxf': gasketUrl } };

function tell(text) {
  byId('alert-text').textContent = text;
  byId('alert').hidden = false;
}

const complain = (error) => tell(error.message || String(error));

// A model's own files may come with it, but one thing is shown at a time.
function tellLeftOut(model, others) {
  const names = others.filter((file) => isModel(file) || isDrawing(file)).map((file) => file.name);
  if (names.length > 0) tell(`${model.name} is shown; left out: ${names.join(', ')}. One model is drawn at a time, or two drawings are combined.`);
}

async function open(files) {
  byId('alert').hidden = true;
  if (files.length === 0) return;
  const models = files.filter(isModel);
  try {
    if (models.length > 0) {
      const [model] = models, others = files.filter((file) => file !== model);
      if (!(await openModel(model, others, complain))) return;
      show('model');
      tellLeftOut(model, others);
    } else if (files.length > 2) {
      throw new Error(`${files.length} drawings were dropped; two are combined at a time`);
    } else if (await openDrawings(files, complain)) {
      show('regions');
    }
  } catch (error) {
    complain(error);
  }
}

function show(part) {
  byId('welcome').hidden = true;
  if (part === 'model') closeDrawings();
  else closeModel().catch(complain);
}

async function openExample(name) {
  try {
    const files = Object.entries(EXAMPLES[name]).map(async ([file, url]) => new File([await (await fetch(url)).blob()], file));
    await open(await Promise.all(files));
  } catch (error) {
    complain(error);
  }
}

byId('open').addEventListener('click', () => byId('files').click());
byId('files').addEventListener('change', () => {
  open([...byId('files').files]);
  byId('files').value = '';
});
byId('cancel').addEventListener('click', cancel);
byId('alert-close').addEventListener('click', () => { byId('alert').hidden = true; });
for (const button of document.querySelectorAll('[data-example]')) button.addEventListener('click', () => openExample(button.dataset.example));

let depth = 0; // of elements that the drag is over
document.addEventListener('dragenter', (event) => {
  event.preventDefault();
  document.body.classList.toggle('dragging', ++depth > 0);
});
document.addEventListener('dragleave', () => { document.body.classList.toggle('dragging', --depth > 0); });
document.addEventListener('dragover', (event) => event.preventDefault());
document.addEventListener('drop', (event) => {
  event.preventDefault();
  depth = 0;
  document.body.classList.remove('dragging');
  open([...event.dataTransfer.files]);
});
document.addEventListener('keydown', (event) => {
  if (event.key === 'Escape' && isBusy()) cancel();
  if (event.key === 'o' && (event.ctrlKey || event.metaKey)) {
    event.preventDefault();
    byId('files').click();
  }
});

const repaint = () => {
  repaintModel().catch(complain);
  repaintRegions();
};
window.matchMedia('(prefers-color-scheme: dark)').addEventListener('change', repaint);
window.addEventListener('resize', repaintRegions);
window.addEventListener('unhandledrejection', (event) => complain(event.reason));
prepareModel(complain);
