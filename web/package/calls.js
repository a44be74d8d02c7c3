// Calls with regions: arrays in, arrays out. index.d.ts is the reference.
import { textOf } from './instance.js';
import { regionOf, regionOfBuffers } from './regions.js';

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

function partsOf(value, name) {
  const region = regionOf(value, name);
  if (!region.polygons || !(value.parts instanceof Int32Array) || value.parts.length === 0)
    throw new TypeError(`${name}: polygons and parts (Int32Array) are needed`);
  return { region, parts: value.parts };
}

export class Zbr {
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
    if (typeof tolerance !== 'number') throw new TypeError('tolerance: a number is needed');
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

  get memory() { return { bytes: this.#instance.memory }; }
}
