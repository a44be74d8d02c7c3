// A module of WebAssembly: loading it, and calls with arrays and texts on either side.
//
// A call puts its arrays into the module's memory, copies what comes back and frees everything before it returns: nothing that a
// caller holds lies in there, but models. After a fault of the machine (stack or memory used up, which no call recovers from by
// itself) the next call gets a new instance; models of the old one are gone.

const utf8 = new TextEncoder();
const fromUtf8 = new TextDecoder();

const DONE = 0, FAILED = 1, NO_MEMORY = 2;

/** What calls throw for bad input, and when memory does not suffice (code 'memory') or a fault was met (code 'fault'). */
export class ZbrError extends Error {
  constructor(message, code, place = {}) {
    super(message);
    this.name = 'ZbrError';
    this.code = code;
    for (const [key, value] of Object.entries(place)) {
      if (key !== 'message' && value !== '' && value !== -1 && !(key === 'line' && value === 0)) this[key] = value;
    }
  }
}

async function compile(source) {
  const wasm = await source;
  if (wasm instanceof WebAssembly.Module) return wasm;
  if (ArrayBuffer.isView(wasm) || wasm instanceof ArrayBuffer) return WebAssembly.compile(wasm);
  if (typeof Response !== 'undefined' && wasm instanceof Response) return WebAssembly.compile(await wasm.arrayBuffer());
  const url = new URL(wasm, import.meta.url);
  if (url.protocol === 'file:') {
    const files = 'node:fs/promises';
    const { readFile } = await import(/* @vite-ignore */ files);
    return WebAssembly.compile(await readFile(url));
  }
  const response = await fetch(url);
  if (!response.ok) throw new ZbrError(`${url}: ${response.status} ${response.statusText}`, 'load');
  return WebAssembly.compile(await response.arrayBuffer());
}

/** Compiles a module once, for several instances of it. */
export { compile as compileModule };

export class Instance {
  #module;
  #create; // by Emscripten
  #core;
  #isBroken = false;
  #isBusy = false;
  #thrown;
  #released = []; // models that were let go while a call was under way, perhaps one on them
  generation = 0; // of instances; models know theirs

  /** Of a module, or from where that is; `needed` is a function that the right one has. */
  static async load(create, source, needed) {
    const instance = new Instance();
    instance.#create = create;
    instance.#module = await compile(source);
    if (WebAssembly.Module.exports(instance.#module).every(({ name }) => name !== needed))
      throw new ZbrError('this is another module than the one needed', 'load');
    const core = { print() {}, printErr() {} };
    try {
      instance.#core = await new Promise((resolve, reject) => {
        core.instantiateWasm = (imports, receive) => {
          WebAssembly.instantiate(instance.#module, imports).then(receive).catch(reject);
          return {};
        };
        create(core).then(resolve, reject);
      });
    } catch (error) {
      throw new ZbrError(`the module cannot be started: ${error.message ?? error}`, 'load');
    }
    return instance;
  }

  #renew() {
    const core = { print() {}, printErr() {} };
    core.instantiateWasm = (imports, receive) => {
      const made = new WebAssembly.Instance(this.#module, imports);
      receive(made);
      return made.exports;
    };
    this.#create(core);
    this.#core = core;
    this.#isBroken = false;
    ++this.generation;
  }

  /** Bytes of memory that the module has taken. */
  get memory() {
    return this.#core.HEAPU8.length;
  }

  /** Models that are held. */
  get modelCount() {
    return this.#core._zbrwModelCount();
  }

  /** Calls a function whose arguments are numbers, { bytes } (an array, passed by its address) or { views: regions }. */
  call(name, args, { texts = [], onProgress } = {}) {
    if (this.#isBusy) throw new ZbrError('a progress function can not make calls of its own', 'input');
    if (this.#isBroken) this.#renew();
    const core = this.#core;
    const room = new Room(core, args);
    this.#isBusy = true;
    try {
      for (const text of texts) this.#addText(text);
      room.fill();
      this.#listen(onProgress);
      const status = core['_' + name](...room.numbers);
      if (this.#thrown) throw this.#thrown.error;
      if (status === DONE) return this.#answer();
      this.#fail(status);
    } catch (error) {
      if (error === this.#thrown?.error) throw error;
      if (error instanceof WebAssembly.RuntimeError || error instanceof WebAssembly.Exception || error instanceof RangeError) {
        this.#isBroken = true;
        throw new ZbrError(`zbr: ${error.message ?? 'fault'}`, 'fault');
      }
      throw error;
    } finally {
      this.#isBusy = false;
      if (!this.#isBroken) {
        core._zbrwLetGo();
        room.free();
      }
      core.progress = this.#thrown = undefined;
      for (const model of this.#released.splice(0)) this.release(model);
    }
  }

  release(model) {
    if (this.#isBusy) this.#released.push(model);
    else if (!this.#isBroken) this.#core._zbrwFreeModel(model);
  }

  #addText(text) {
    const bytes = typeof text === 'string' ? utf8.encode(text) : text;
    const at = this.#core._zbrwAddText(bytes.length) >>> 0;
    if (at === 0) throw new ZbrError('not enough memory', 'memory');
    this.#core.HEAPU8.set(bytes, at);
  }

  // An exception of the caller's function stops the call, and leaves it when the call has returned.
  #listen(onProgress) {
    this.#core.progress = !onProgress ? undefined : (share, stage) => {
      try {
        return onProgress(share, stage) === false ? 0 : 1;
      } catch (error) {
        this.#thrown = { error };
        return 0;
      }
    };
  }

  #answer() {
    const core = this.#core;
    const at = (core._zbrwTable() >>> 0) / 4, size = core._zbrwTableSize();
    const table = core.HEAPU32.subarray(at, at + size);
    const arrays = [];
    for (let i = 0; i < size; i += 2) arrays.push(core.HEAPU8.slice(table[i], table[i] + table[i + 1]).buffer);
    return arrays;
  }

  #fail(status) {
    if (status === FAILED) {
      const [numbers, ...texts] = this.#answer();
      const [line, operand, ring, point] = new Int32Array(numbers), [message, file, reason] = texts.map(textOf);
      throw new ZbrError(message, 'input', { file, line, reason, operand, ring, point });
    }
    if (status === NO_MEMORY) {
      this.#isBroken = true; // what was left behind goes with the instance
      throw new ZbrError('not enough memory', 'memory');
    }
    throw new DOMException('stopped by the progress function', 'AbortError');
  }
}

export const textOf = (buffer) => fromUtf8.decode(buffer);

/** What files hold: texts and bytes. */
export function bytesOf(data, name) {
  if (typeof data === 'string') return data;
  if (data instanceof ArrayBuffer) return new Uint8Array(data);
  if (ArrayBuffer.isView(data)) return new Uint8Array(data.buffer, data.byteOffset, data.byteLength);
  throw new TypeError(`${name}: a string, an ArrayBuffer or an array of bytes is needed`);
}

// The arrays of a call in one block of memory.
class Room {
  #core;
  #address = 0;
  #writes = [];
  #size = 0;
  numbers = [];

  constructor(core, args) {
    this.#core = core;
    for (const arg of args) {
      if (typeof arg === 'number') this.numbers.push(arg);
      else if (arg.views) this.#addViews(arg.views);
      else this.numbers.push({ offset: this.#add(arg.bytes) });
    }
  }

  #add(array) {
    const offset = this.#size;
    this.#writes.push({ offset, array });
    this.#size += (array.byteLength + 7) & ~7;
    if (this.#size > 0xfff00000) throw new ZbrError('not enough memory', 'memory');
    return offset;
  }

  // Records of six numbers: addresses and counts.
  #addViews(regions) {
    const fields = [];
    for (const { coords, rings, polygons } of regions) {
      fields.push({ offset: this.#add(coords) }, coords.length / 2, { offset: this.#add(rings) }, rings.length - 1);
      if (polygons) fields.push({ offset: this.#add(polygons) }, polygons.length - 1);
      else fields.push(0, 0);
    }
    const offset = this.#size;
    this.#size += fields.length * 4;
    this.#writes.push({ offset, fields });
    this.numbers.push({ offset });
  }

  fill() {
    const core = this.#core;
    this.#address = core._malloc(Math.max(this.#size, 8)) >>> 0;
    if (this.#address === 0) throw new ZbrError('not enough memory', 'memory');
    const absolute = (field) => (typeof field === 'number' ? field : this.#address + field.offset);
    for (const { offset, array, fields } of this.#writes) {
      const at = this.#address + offset;
      if (array) core.HEAPU8.set(new Uint8Array(array.buffer, array.byteOffset, array.byteLength), at);
      else core.HEAPU32.set(fields.map(absolute), at / 4);
    }
    this.numbers = this.numbers.map(absolute);
  }

  free() {
    if (this.#address) this.#core._free(this.#address);
  }
}
