// The worker's side of worker.js: one call at a time, by name.
const isNode = typeof self === 'undefined' || typeof self.postMessage !== 'function';
const threads = 'node:worker_threads';
const port = isNode ? (await import(/* @vite-ignore */ threads)).parentPort : self;
const importing = { regions: () => import('./index.js'), planar: () => import('./planar.js'), models: () => import('./models.js') };
const zbr = {}; // what each module has, once loaded
const models = new Map();
let last = 0;

// Everything that lies in memory by itself goes over without a copy.
function transferables(value, found = new Set()) {
  if (ArrayBuffer.isView(value)) found.add(value.buffer);
  else if (value && typeof value === 'object') for (const item of Object.values(value)) transferables(item, found);
  return found;
}

function placeOf(error) {
  const { name, message, code, ...rest } = error;
  return { name: error.name, message: error.message, code, ...rest };
}

const bytesOf = (data) => (typeof Blob !== 'undefined' && data instanceof Blob ? data.arrayBuffer() : data);

async function open({ data, triangles, beside = {}, ...options }) {
  if (triangles) return zbr.models.makeModel(data, triangles, options);
  const others = Object.fromEntries(await Promise.all(Object.entries(beside).map(async ([name, file]) => [name, await bytesOf(file)])));
  return zbr.models.readModel(await bytesOf(data), { ...options, beside: others });
}

async function run({ module, method, args, model, progressAt }, onProgress) {
  if (method === 'load') {
    const [name, wasm] = args;
    const { load } = await importing[name]();
    zbr[name] = await load({ wasm });
    return undefined;
  }
  if (method === 'openModel') {
    const opened = await open({ ...args[0], onProgress });
    models.set(++last, opened);
    return { number: last, info: opened.info };
  }
  if (method === 'free') {
    models.get(model)?.free();
    models.delete(model);
    return undefined;
  }
  for (const arg of args) {
    if (arg?.data) arg.data = await bytesOf(arg.data); // of drawings
  }
  if (onProgress) args[progressAt].onProgress = onProgress;
  const target = model === undefined ? zbr[module] : models.get(model);
  return target[method](...args);
}

async function answer({ id, ...call }) {
  let told = 0;
  const onProgress = call.progressAt === undefined ? undefined : (share, stage) => {
    const now = performance.now();
    if (now - told > 30 || share === 0) port.postMessage({ id, share, stage });
    if (now - told > 30) told = now;
  };
  try {
    const result = await run(call, onProgress);
    port.postMessage({ id, result }, [...transferables(result)]);
  } catch (error) {
    port.postMessage({ id, error: placeOf(error) });
  }
}

let answered = Promise.resolve();
const take = (call) => { answered = answered.then(() => answer(call)); };
if (isNode) port.on('message', take);
else port.onmessage = ({ data }) => take(data);
