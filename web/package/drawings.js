// Drawings of models, and drawings and models from files, beside what 'zbr' has. drawings.d.ts is the reference.
import { Zbr } from './calls.js';
import { Instance, ZbrError, textOf } from './instance.js';
import { Model, edgeClasses } from './models.js';
import { fromGeoJSON, regionOf, regionOfBuffers, toGeoJSON } from './regions.js';
import createCore from './zbr-drawings.mjs';

export { Model, ZbrError, edgeClasses, fromGeoJSON, toGeoJSON };

function bytesOf(data, name) {
  if (typeof data === 'string') return data;
  if (data instanceof ArrayBuffer) return new Uint8Array(data);
  if (ArrayBuffer.isView(data)) return new Uint8Array(data.buffer, data.byteOffset, data.byteLength);
  throw new TypeError(`${name}: a string, an ArrayBuffer or an array of bytes is needed`);
}

class ZbrDrawings extends Zbr {
  #instance;

  constructor(instance) {
    super(instance);
    this.#instance = instance;
  }

  readDrawing(drawing, options = {}) {
    const { operands, unit, notes, files } = this.#drawings([drawing], { ...options, ops: [] });
    return { unit, notes, files, ...operands[0] };
  }

  combineDrawings(a, b, options = {}) {
    return this.#drawings([a, b], { ops: ['union', 'intersection', 'a-b', 'b-a', 'xor'], ...options });
  }

  #drawings(drawings, { onProgress, formats = [], ...options }) {
    const files = drawings.map(({ name, format }) => ({ name, format }));
    const texts = drawings.map(({ data }, i) => bytesOf(data, `${'ab'[i]}.data`));
    texts.unshift(JSON.stringify({ ...options, formats, files }));
    const [json, ...buffers] = this.#instance.call('zbrwCombineDrawings', [drawings.length], { texts, onProgress });
    const facts = JSON.parse(textOf(json));
    const items = [...facts.operands, ...facts.results];
    items.forEach((item, i) => { item.region = regionOfBuffers(buffers.slice(3 * i, 3 * i + 3)); });
    facts.files = Object.fromEntries(formats.map((format, i) => [format, textOf(buffers[3 * items.length + i])]));
    return facts;
  }

  writeRegions(regions, format, options = {}) {
    const names = Object.keys(regions);
    const views = names.map((name) => regionOf(regions[name], name));
    const texts = [JSON.stringify({ ...options, names, format })];
    return textOf(this.#instance.call('zbrwWriteRegions', [{ views }], { texts })[0]);
  }

  readModel(data, { onProgress, beside = {}, ...options } = {}) {
    const names = Object.keys(beside);
    const others = names.map((name) => bytesOf(beside[name], `beside['${name}']`));
    const texts = [JSON.stringify({ ...options, beside: names }), bytesOf(data, 'data'), ...others];
    const [number] = this.#instance.call('zbrwReadModel', [names.length], { texts, onProgress });
    return new Model(this.#instance, new Uint32Array(number)[0]);
  }

  makeModel(points, triangles, { onProgress, shells = [], ...options } = {}) {
    const coordinates = points instanceof Float64Array ? points : Float64Array.from(points.flat?.() ?? points);
    const corners = triangles instanceof Uint32Array ? triangles : Uint32Array.from(triangles.flat?.() ?? triangles);
    if (coordinates.length % 3 !== 0) throw new TypeError('points: x, y and z of each are needed');
    if (corners.length % 3 !== 0) throw new TypeError('triangles: three corners of each are needed');
    const numbers = shells instanceof Uint32Array ? shells : Uint32Array.from(shells);
    const args = [{ bytes: coordinates }, coordinates.length / 3, { bytes: corners }, corners.length / 3, { bytes: numbers }, numbers.length];
    const [number] = this.#instance.call('zbrwMakeModel', args, { texts: [JSON.stringify(options)], onProgress });
    return new Model(this.#instance, new Uint32Array(number)[0]);
  }

  get memory() { return { ...super.memory, models: this.#instance.modelCount }; }
}

export async function load({ wasm } = {}) {
  return new ZbrDrawings(await Instance.load(createCore, wasm ?? new URL('./zbr-drawings.wasm', import.meta.url), 'zbrwReadModel'));
}
export default load;
