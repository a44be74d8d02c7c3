// Booleans of planar regions and hidden-line drawings of triangle meshes. index.d.ts is the reference.
import { Instance, ZbrError, textOf } from './instance.js';
import { Model, edgeClasses } from './models.js';
import { fromGeoJSON, regionOf, regionOfBuffers, toGeoJSON } from './regions.js';

export { Model, ZbrError, edgeClasses, fromGeoJSON, toGeoJSON };

const OPS = { 'a-b': 0, 'b-a': 1, union: 2, intersection: 3, xor: 4 };
const RULES = { evenodd: 0, nonzero: 1, positive: 2, negative: 3 };
const REGION_OPTIONS = new Set(['tolerance', 'fill', 'fillA', 'fillB', 'sources', 'canonical', 'onProgress']);

function lookUp(table, name, what) {
  if (!Object.hasOwn(table, name)) throw new TypeError(`${what}: '${name}' is none of ${Object.keys(table).join(', ')}`);
  return table[name];
}

function numbersOf(options) {
  for (const name of Object.keys(options)) {
    if (!REGION_OPTIONS.has(name)) throw new TypeError(`${name}: there is no such option`);
  }
  const { tolerance = 0, fill = 'evenodd', fillA = fill, fillB = fill, sources, canonical, onProgress } = options;
  if (!(tolerance >= 0 && tolerance < Infinity)) throw new TypeError('tolerance: a finite number, not negative, is needed');
  return {
    bytes: Float64Array.of(tolerance, lookUp(RULES, fillA, 'fill'), lookUp(RULES, fillB, 'fill'), sources ? 1 : 0, canonical ? 1 : 0,
      onProgress ? 1 : 0),
  };
}

function withSources(buffers) {
  const region = regionOfBuffers(buffers);
  if (buffers.length < 5) return region;
  const records = new Int32Array(buffers[4]), parameters = new Float64Array(buffers[4]);
  const count = parameters.length / 4;
  const edges = new Int32Array(3 * count), along = new Float64Array(2 * count);
  for (let i = 0; i < count; ++i) {
    edges.set(records.subarray(8 * i, 8 * i + 3), 3 * i);
    along.set(parameters.subarray(4 * i + 2, 4 * i + 4), 2 * i);
  }
  region.sources = { offsets: new Int32Array(buffers[3]), edges, along };
  return region;
}

function bytesOf(data, name) {
  if (typeof data === 'string') return data;
  if (data instanceof ArrayBuffer) return new Uint8Array(data);
  if (ArrayBuffer.isView(data)) return new Uint8Array(data.buffer, data.byteOffset, data.byteLength);
  throw new TypeError(`${name}: a string, an ArrayBuffer or an array of bytes is needed`);
}

function partsOf(value, name) {
  const region = regionOf(value, name);
  if (!region.polygons || !(value.parts instanceof Int32Array) || value.parts.length === 0)
    throw new TypeError(`${name}: polygons and parts (Int32Array) are needed`);
  return { region, parts: value.parts };
}

class Zbr {
  #instance;

  constructor(instance) {
    this.#instance = instance;
  }

  union(a, b, options) { return this.combine(a, b, ['union'], options)[0]; }
  intersection(a, b, options) { return this.combine(a, b, ['intersection'], options)[0]; }
  difference(a, b, options) { return this.combine(a, b, ['a-b'], options)[0]; }
  xor(a, b, options) { return this.combine(a, b, ['xor'], options)[0]; }

  combine(a, b, ops, options = {}) {
    const codes = Int32Array.from(ops, (op) => lookUp(OPS, op, 'ops'));
    const views = [regionOf(a, 'a'), regionOf(b, 'b')];
    const buffers = this.#instance.call('zbrwCombine', [{ views }, { bytes: codes }, codes.length, numbersOf(options)], options);
    const each = options.sources ? 5 : 3;
    return ops.map((_, k) => withSources(buffers.slice(each * k, each * k + each)));
  }

  combinePairs(a, b, op, options = {}) {
    const left = partsOf(a, 'a'), right = partsOf(b, 'b');
    if (left.parts.length !== right.parts.length) throw new TypeError('a, b: as many parts are needed on both sides');
    const args = [{ views: [left.region, right.region] }, { bytes: left.parts }, { bytes: right.parts }, left.parts.length - 1,
      lookUp(OPS, op, 'op'), numbersOf(options)];
    const buffers = this.#instance.call('zbrwCombinePairs', args, options);
    return { ...regionOfBuffers(buffers), parts: new Int32Array(buffers[3]) };
  }

  unite(regions, options) { return this.cover(regions, 1, options); }

  cover(regions, times, options = {}) {
    const views = Array.from(regions, (region, i) => regionOf(region, `regions[${i}]`));
    return withSources(this.#instance.call('zbrwCover', [{ views }, views.length, times, numbersOf(options)], options));
  }

  makeValid(rings, options = {}) {
    return withSources(this.#instance.call('zbrwMakeValid', [{ views: [regionOf(rings, 'rings')] }, numbersOf(options)], options));
  }

  simplify(rings, tolerance, options = {}) {
    const args = [{ views: [regionOf(rings, 'rings')] }, tolerance, numbersOf(options)];
    return regionOfBuffers(this.#instance.call('zbrwSimplify', args, options));
  }

  faces(lines, options = {}) {
    return withSources(this.#instance.call('zbrwTraceFaces', [{ views: [regionOf(lines, 'lines')] }, numbersOf(options)], options));
  }

  check(rings, { most = 1000000 } = {}) {
    const [buffer, names] = this.#instance.call('zbrwCheck', [{ views: [regionOf(rings, 'rings')] }, most]);
    const ints = new Int32Array(buffer), doubles = new Float64Array(buffer), kinds = textOf(names).split('\n');
    return Array.from({ length: ints.length / 10 }, (_, i) => {
      const [ringA, edgeA, ringB, edgeB] = ints.subarray(10 * i + 6, 10 * i + 10);
      return { kind: kinds[i], place: [doubles[5 * i + 1], doubles[5 * i + 2]], ringA, edgeA, ringB, edgeB };
    });
  }

  measure(region) {
    const [buffer] = this.#instance.call('zbrwMeasure', [{ views: [regionOf(region, 'region')] }]);
    const [area, perimeter, ...bounds] = new Float64Array(buffer);
    return { area, perimeter, bounds };
  }

  area(region) { return this.measure(region).area; }

  locate(region, points, options = {}) {
    const list = points instanceof Float64Array ? points : Float64Array.from(points.flat?.() ?? points);
    if (list.length % 2 !== 0) throw new TypeError('points: pairs of x and y are needed');
    const args = [{ views: [regionOf(region, 'region')] }, { bytes: list }, list.length / 2, numbersOf(options)];
    return new Int8Array(this.#instance.call('zbrwLocate', args, options)[0]);
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

  makeModel(points, triangles, { onProgress, ...options } = {}) {
    const coordinates = points instanceof Float64Array ? points : Float64Array.from(points.flat?.() ?? points);
    const corners = triangles instanceof Uint32Array ? triangles : Uint32Array.from(triangles.flat?.() ?? triangles);
    if (coordinates.length % 3 !== 0) throw new TypeError('points: x, y and z of each are needed');
    if (corners.length % 3 !== 0) throw new TypeError('triangles: three corners of each are needed');
    const args = [{ bytes: coordinates }, coordinates.length / 3, { bytes: corners }, corners.length / 3];
    const [number] = this.#instance.call('zbrwMakeModel', args, { texts: [JSON.stringify(options)], onProgress });
    return new Model(this.#instance, new Uint32Array(number)[0]);
  }

  get memory() { return { bytes: this.#instance.memory, models: this.#instance.modelCount }; }
}

export async function load({ wasm } = {}) {
  return new Zbr(await Instance.load(wasm));
}
export default load;
