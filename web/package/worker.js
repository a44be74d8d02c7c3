// The same calls as promises, worked on by a worker: the page stays alive, and an AbortSignal ends a call at once.
//
// A call can't be interrupted from outside, so the worker of one that is aborted is ended and the next call gets another, for which
// compiled modules are kept. Models are opened again there when they are next asked for something, from the file or array they came
// from. A module is loaded by the first call that needs it: the one for regions, or the one that has all calls.
import { ZbrError, compileModule } from './instance.js';

const METHODS = {
  regions: ['union', 'intersection', 'difference', 'xor', 'combine', 'combinePairs', 'unite', 'cover', 'makeValid', 'simplify', 'faces',
    'check', 'measure', 'area', 'locate'],
  planar: ['readDrawing', 'combineDrawings', 'writeRegions'],
};

async function startThread() {
  if (typeof Worker !== 'undefined') {
    const worker = new Worker(new URL('./worker-thread.js', import.meta.url), { type: 'module' });
    return {
      post: (message) => worker.postMessage(message),
      listen(take, fail) {
        worker.onmessage = ({ data }) => take(data);
        worker.onerror = (event) => fail(event.message || 'the worker could not be started');
      },
      end: () => worker.terminate(),
    };
  }
  const threads = 'node:worker_threads', file = './worker-thread.js'; // not for bundlers
  const { Worker: NodeWorker } = await import(/* @vite-ignore */ threads);
  const worker = new NodeWorker(new URL(/* @vite-ignore */ file, import.meta.url));
  worker.unref();
  return {
    post: (message) => worker.postMessage(message),
    listen(take, fail) {
      worker.on('message', take);
      worker.on('error', (error) => fail(error.message));
    },
    end: () => worker.terminate(),
    hold: (busy) => (busy ? worker.ref() : worker.unref()),
  };
}

function errorOf({ name, message, code, ...rest }) {
  if (name === 'AbortError') return new DOMException(message, name);
  if (name === 'TypeError') return new TypeError(message);
  return new ZbrError(message, code, rest);
}

// What the caller gave as options: functions and signals stay on this side.
const optionsOf = (last) => (last && typeof last === 'object' && ('signal' in last || 'onProgress' in last) ? last : undefined);

// Codes of errors after which the module is another one, without the models.
const LOST = new Set(['memory', 'fault']);

// Why a call did not reach its model: the worker that held it had ended meanwhile.
const GONE = Symbol('gone');

class ZbrWorker {
  #sources;
  #modules = {}; // compiled
  #thread;
  #has = new Set(); // modules that the thread has
  #generation = 0; // of threads
  #waiting = [];
  #running;
  #lastId = 0;
  #isClosed = false;

  /** By openWorker only. */
  constructor(sources) {
    this.#sources = sources;
    for (const [module, methods] of Object.entries(METHODS)) {
      for (const method of methods) this[method] = (...args) => this.#callByName(module, method, args);
    }
  }

  #callByName(module, method, args) {
    const { signal, onProgress, ...rest } = optionsOf(args.at(-1)) ?? {};
    if (signal || onProgress) args[args.length - 1] = rest;
    return this.#call({ module, method, args, progressAt: onProgress && args.length - 1 }, { signal, onProgress });
  }

  /** A model from a File or Blob, bytes, or points and triangles; it is read at once. */
  async readModel(data, { signal, onProgress, ...options } = {}) {
    const model = new WorkerModel((...args) => this.#callModel(...args), { data, ...options });
    await model.open({ signal, onProgress });
    return model;
  }

  makeModel(points, triangles, options = {}) {
    return this.readModel(points, { ...options, triangles });
  }

  close() {
    this.#isClosed = true;
    this.#thread?.end();
    const closed = new ZbrError('the worker was closed', 'closed');
    for (const call of [this.#running, ...this.#waiting]) call?.reject(closed);
    this.#running = undefined;
    this.#waiting = [];
  }

  async #callModel(state, source, call, options) {
    for (;;) {
      if (state.generation !== this.#generation || !state.number) {
        if (call?.method === 'free') return undefined;
        const progressAt = options?.onProgress && 0;
        Object.assign(state, await this.#call({ method: 'openModel', args: [source], progressAt }, options));
      }
      if (!call) return undefined;
      try {
        return await this.#call({ ...call, model: state.number, generation: state.generation }, options);
      } catch (error) {
        if (error !== GONE) throw error;
      }
    }
  }

  #call(call, { signal, onProgress } = {}) {
    if (this.#isClosed) return Promise.reject(new ZbrError('the worker was closed', 'closed'));
    if (signal?.aborted) return Promise.reject(signal.reason);
    return new Promise((resolve, reject) => {
      const waiting = { module: 'models', ...call, id: ++this.#lastId, resolve, reject, onProgress };
      if (signal) {
        const abort = () => this.#abort(waiting, signal.reason);
        signal.addEventListener('abort', abort, { once: true });
        waiting.settled = () => signal.removeEventListener('abort', abort);
      }
      this.#waiting.push(waiting);
      this.#next();
    });
  }

  #abort(call, reason) {
    const place = this.#waiting.indexOf(call);
    if (place >= 0) this.#waiting.splice(place, 1);
    else if (this.#running === call) this.#endThread();
    call.settled?.();
    call.reject(reason);
    this.#next();
  }

  #endThread() {
    this.#thread?.end();
    this.#thread = this.#running = undefined;
    this.#has.clear();
    ++this.#generation;
  }

  async #next() {
    if (this.#running || this.#waiting.length === 0) return;
    const call = this.#running = this.#waiting.shift();
    try {
      if (!this.#thread) await this.#start();
      if (call.module === 'regions' && this.#has.has('planar')) call.module = 'planar';
      if (!this.#has.has(call.module)) await this.#equip(call.module);
    } catch (error) { // what is around allows no worker, or a module is not where it should be
      if (this.#running === call) this.#settle(() => call.reject(new ZbrError(error.message, 'load')));
      return;
    }
    if (this.#running !== call) return; // aborted or closed meanwhile
    if ((call.generation ?? this.#generation) !== this.#generation) {
      this.#settle(() => call.reject(GONE));
      return;
    }
    const { id, module, method, args, model, progressAt } = call;
    this.#thread.hold?.(true);
    try {
      this.#thread.post({ id, module, method, args, model, progressAt });
    } catch (error) { // what can't be sent, such as a function
      this.#settle(() => call.reject(error));
    }
  }

  async #start() {
    const generation = this.#generation;
    const thread = await startThread();
    if (generation !== this.#generation || this.#isClosed) return thread.end();
    this.#thread = thread;
    const ifInUse = (take) => (what) => { if (this.#thread === thread) take(what); };
    thread.listen(ifInUse((message) => this.#take(message)), ifInUse((cause) => this.#fail(new ZbrError(cause, 'fault'))));
    return undefined;
  }

  async #equip(module) {
    const thread = this.#thread;
    this.#modules[module] ??= await compileModule(this.#sources[module]());
    if (this.#thread !== thread || !thread) return;
    thread.post({ id: 0, method: 'load', args: [module, this.#modules[module]] });
    this.#has.add(module);
  }

  #take({ id, share, stage, result, error }) {
    const call = this.#running;
    if (!call || (id !== 0 && call.id !== id)) return;
    if (share !== undefined) this.#tell(call, share, stage);
    else if (error && (id === 0 || LOST.has(error.code))) this.#fail(errorOf(error));
    else if (error) this.#settle(() => call.reject(errorOf(error)));
    else if (id !== 0) this.#settle(() => call.resolve(call.method === 'openModel' ? { ...result, generation: this.#generation } : result));
  }

  #tell(call, share, stage) {
    try {
      if (call.onProgress?.(share, stage) !== false) return;
      throw new DOMException('stopped by the progress function', 'AbortError');
    } catch (error) {
      this.#abort(call, error);
    }
  }

  // The worker is of no more use, nor are the models in it.
  #fail(error) {
    const call = this.#running;
    this.#endThread();
    call?.settled?.();
    call?.reject(error);
    this.#next();
  }

  #settle(settle) {
    this.#running.settled?.();
    this.#running = undefined;
    this.#thread?.hold?.(false);
    settle();
    this.#next();
  }
}

class WorkerModel {
  #call;
  #source;
  #state = {};

  constructor(call, source) {
    this.#call = call;
    this.#source = source;
  }

  get info() { return this.#state.info; }

  open(options) { return this.#call(this.#state, this.#source, undefined, options); }
  mesh({ signal } = {}) { return this.#run('mesh', [], { signal }); }
  draw({ signal, onProgress, ...options } = {}) { return this.#run('draw', [options], { signal, onProgress }); }
  sheet(formats, { signal, onProgress, ...options } = {}) { return this.#run('sheet', [formats, options], { signal, onProgress }); }
  outline(view, { signal, onProgress } = {}) { return this.#run('outline', [view, {}], { signal, onProgress }); }
  tracedOutline(view, { signal, onProgress } = {}) { return this.#run('tracedOutline', [view, {}], { signal, onProgress }); }
  pick(view, points, { signal } = {}) { return this.#run('pick', [view, points], { signal }); }

  async free() {
    if (this.#state.number) await this.#run('free', []);
    this.#state = {};
    this.#source = undefined;
  }

  #run(method, args, options) {
    if (!this.#source) return Promise.reject(new ZbrError('the model was freed', 'freed'));
    const progressAt = options?.onProgress && args.length - 1;
    return this.#call(this.#state, this.#source, { method, args, progressAt }, options);
  }
}

const found = {
  regions: () => new URL('./zbr-regions.wasm', import.meta.url),
  planar: () => new URL('./zbr-planar.wasm', import.meta.url),
  models: () => new URL('./zbr-models.wasm', import.meta.url),
};

export async function openWorker(sources = {}) {
  const given = (name) => (typeof sources[name] === 'function' ? sources[name] : () => sources[name] ?? found[name]());
  return new ZbrWorker(Object.fromEntries(Object.keys(found).map((name) => [name, given(name)])));
}
export default openWorker;
