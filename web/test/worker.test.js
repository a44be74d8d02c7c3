// The calls of a worker: the same answers, and signals that end them.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { example, load, openWorker } from './package.js';

const plate = [[[0, 0], [10, 0], [10, 10], [0, 10]]];
const bar = [[[5, 3], [12, 3], [12, 5], [5, 5]]];

// Rings that keep a worker busy for longer than any test may take.
const slow = Array.from({ length: 6000 }, (_, k) => [[0, k], [6000, 6000 - k], [6000, 6000.5 - k], [0, k + 0.5]]);

test('answers and errors are those of the calls themselves', async () => {
  const zbr = await load(), worker = await openWorker();
  assert.deepEqual(await worker.combine(plate, bar, ['union', 'xor']), zbr.combine(plate, bar, ['union', 'xor']));
  const data = example('bracket.dxf');
  assert.deepEqual(await worker.readDrawing({ data: new Blob([data]), name: 'b.dxf' }), zbr.readDrawing({ data, name: 'b.dxf' }));
  await assert.rejects(worker.union(plate, [[[0, 0], [1, NaN], [1, 1]]]), { name: 'ZbrError', code: 'input', operand: 1, point: 1 });
  await assert.rejects(worker.union(plate, 3), TypeError);
  await assert.rejects(worker.union(plate, () => 3), { name: 'DataCloneError' });
  assert.equal(await worker.area(plate), 100);
  worker.close();
  await assert.rejects(worker.area(plate), { code: 'closed' });
});

test('a signal ends a call at once; models are there again', { timeout: 120000 }, async () => {
  const worker = await openWorker();
  const shares = [];
  const model = await worker.readModel(new Blob([example('housing.obj')]), { name: 'housing.obj', onProgress: (share) => shares.push(share) });
  assert.ok(shares.length > 0);
  const drawing = await model.draw({ view: 'top' });
  const abort = new AbortController();
  const aborted = worker.union(slow, slow, { fill: 'nonzero', signal: abort.signal });
  const behind = worker.area(plate);
  const drawnBehind = model.draw({ view: 'top' }); // by a worker that has yet to open the model
  setTimeout(() => abort.abort(), 100);
  await assert.rejects(aborted, { name: 'AbortError' });
  assert.equal(await behind, 100);
  assert.deepEqual(await drawnBehind, drawing);
  await assert.rejects(worker.area(plate, { signal: abort.signal }), { name: 'AbortError' });
  await model.free();
  await assert.rejects(model.draw(), { code: 'freed' });
  worker.close();
});

test('a worker that cannot be started, or runs out of memory, fails one call only', { timeout: 60000 }, async () => {
  const worker = await openWorker();
  const threads = [];
  globalThis.Worker = class {
    constructor() { if (threads.push(this) === 1) throw new Error('workers are refused'); }
    postMessage({ id, method }) {
      const isFull = method === 'draw' && threads.length === 2;
      const answer = isFull ? { error: { name: 'ZbrError', message: 'not enough memory', code: 'memory' } } : { result: { number: 1, thread: threads.length } };
      setTimeout(() => this.onmessage({ data: { id, ...answer } }));
    }
    terminate() {}
  };
  try {
    await assert.rejects(worker.area(plate), { code: 'load', message: 'workers are refused' });
    const model = await worker.readModel('');
    await assert.rejects(model.draw(), { code: 'memory' });
    assert.equal((await model.draw()).thread, 3);
  } finally {
    delete globalThis.Worker;
  }
});

test('a progress function ends a call of a worker, too', async () => {
  const worker = await openWorker();
  const model = await worker.readModel(example('housing.obj'), { name: 'housing.obj' });
  await assert.rejects(model.draw({ onProgress: () => false }), { name: 'AbortError' });
  await assert.rejects(model.draw({ onProgress() { throw new RangeError('mine'); } }), { message: 'mine' });
  assert.equal((await model.draw()).name, 'iso');
  worker.close();
});
