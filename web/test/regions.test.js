// Regions: data in and out, options, errors. That results are right is the library's matter; that they are its bits, same.test.js's.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { folder, loadModels, loadPlanar, loadRegions, random, zbr as pkg } from './package.js';

const { fromGeoJSON, toGeoJSON, ZbrError } = pkg;
const zbr = await loadRegions();

const square = (x, y, side) => [[x, y], [x + side, y], [x + side, y + side], [x, y + side]];
const plate = [square(0, 0, 10), square(4, 4, 2)];
const bar = [[[5, 3], [12, 3], [12, 5], [5, 5]]];
const bow = [[[20, 0], [24, 4], [24, 0], [20, 4]]];

function stars(seed, count) {
  const next = random(seed);
  const rings = [];
  for (let k = 0; k < count; ++k) {
    const x = next(100), y = next(100);
    rings.push(Array.from({ length: 9 }, (_, i) => {
      const angle = (2 * Math.PI * i) / 9, radius = 2 + next(20);
      return [x + radius * Math.cos(angle), y + radius * Math.sin(angle)];
    }));
  }
  return rings;
}

test('what goes in may be arrays, rings or GeoJSON', () => {
  const region = zbr.union(plate, bar);
  assert.equal(zbr.area(region), 101);
  assert.deepEqual([region.polygons.length - 1, region.rings.length - 1], [1, 2]);
  const json = toGeoJSON(region);
  assert.equal(json.type, 'MultiPolygon');
  assert.deepEqual(json.coordinates[0][0][0], json.coordinates[0][0].at(-1));
  assert.deepEqual(zbr.union(json, { type: 'Feature', geometry: json }, { canonical: true }), zbr.makeValid(region, { canonical: true }));
  const { coords, rings } = fromGeoJSON({ type: 'Polygon', coordinates: plate });
  assert.equal(zbr.area(zbr.makeValid({ coords: [...coords], rings: [...rings] })), 96);
  assert.deepEqual(zbr.measure(plate).bounds, [0, 0, 10, 10]);
  assert.equal(zbr.measure([]).area, 0);
});

test('the operations agree with each other', () => {
  for (let seed = 1; seed <= 20; ++seed) {
    const options = seed % 2 ? { fill: 'nonzero' } : { fillA: 'evenodd', fillB: 'positive' };
    const a = stars(seed, 6), b = stars(seed + 100, 6);
    const areas = zbr.combine(a, b, ['union', 'intersection', 'a-b', 'b-a', 'xor'], options).map((r) => zbr.area(r));
    const [union, both, ab, ba, xor] = areas;
    const near = (x, y) => assert.ok(Math.abs(x - y) < 1e-9 * union, `${seed}: ${areas}`);
    near(union, both + ab + ba);
    near(xor, ab + ba);
    near(union, zbr.area(zbr.union(a, b, options)));
  }
});

test('sources tell the edge of an operand', () => {
  const { coords, sources } = zbr.makeValid(bow, { sources: true, canonical: true });
  assert.deepEqual([...coords.slice(0, 4)], [20, 0, 22, 2]);
  assert.deepEqual([...sources.offsets], [0, 1, 2, 3, 4, 5, 6]);
  assert.deepEqual([...sources.edges.slice(0, 6)], [0, 0, 0, 0, 0, 2]);
  assert.deepEqual([...sources.along.slice(0, 4)], [0, 0.5, 0.5, 1]);
});

test('pairs are the same one by one', () => {
  const parts = (seed) => {
    const regions = Array.from({ length: 50 }, (_, i) => zbr.makeValid(stars(seed + i, 1 + (i % 3))));
    const all = { coords: [], rings: [0], polygons: [0], parts: [0] };
    for (const r of regions) {
      all.rings.push(...r.rings.slice(1).map((x) => x + all.coords.length / 2));
      all.coords.push(...r.coords);
      all.polygons.push(...r.polygons.slice(1).map((x) => x + all.polygons.at(-1)));
      all.parts.push(all.polygons.length - 1);
    }
    return { regions, all: { coords: Float64Array.from(all.coords), rings: Int32Array.from(all.rings),
      polygons: Int32Array.from(all.polygons), parts: Int32Array.from(all.parts) } };
  };
  const a = parts(1), b = parts(1000);
  const together = zbr.combinePairs(a.all, b.all, 'intersection');
  let point = 0;
  a.regions.forEach((region, i) => {
    const { coords } = zbr.intersection(region, b.regions[i]);
    assert.deepEqual(together.coords.slice(point, point + coords.length), coords);
    point += coords.length;
  });
  assert.equal(point, together.coords.length);
  assert.equal(together.parts.length, 51);
  const wrong = { ...a.all, parts: a.all.parts.slice().reverse() };
  assert.throws(() => zbr.combinePairs(wrong, b.all, 'xor'), { code: 'input', operand: 0 });
});

test('many, faults, cells, places', () => {
  assert.equal(zbr.area(zbr.unite([plate, bar, bow])), 109);
  assert.equal(zbr.area(zbr.cover([plate, bar, square(0, 0, 20)].map((r, i) => (i < 2 ? r : [r])), 3)), 9);
  assert.deepEqual(zbr.check([[[20, 0], [24, 4], [24, 0], [19, 5]]]), [{ kind: 'crossing', place: [22, 2], ringA: 0, edgeA: 0, ringB: 0, edgeB: 2 }]);
  assert.deepEqual(zbr.check([[[0, 0], [0, 0], [4, 0], [0, 4]], [[20, 0], [24, 0], [28, 0], [24, 0], [24, 4]], [[9, 0], [9, 1]]]).map((fault) => fault.kind), ['repeated_point', 'fold', 'no_area']);
  const cells = zbr.faces([[[0, 0], [4, 0], [4, 4], [0, 4], [0, 0]], [[-1, 2], [5, 2]]]);
  assert.deepEqual([cells.polygons.length - 1, zbr.area(cells)], [2, 16]);
  assert.equal(zbr.simplify([[[0, 0], [5, 0], [10, 0], [10, 10], [0, 10]]], 1e-6).coords.length, 8);
  assert.deepEqual([...zbr.locate(plate, [[1, 1], [5, 5], [4, 5], [10, 10], [11, 3], [NaN, 0]])], [1, -1, 0, 0, -1, -1]);
});

test('bad input is refused with its place', () => {
  const wrong = (change, expected) => assert.throws(() => zbr.union({ ...fromGeoJSON({ type: 'Polygon', coordinates: bar }), ...change }, plate), expected);
  assert.throws(() => zbr.union(plate, [[[0, 0], [1, NaN], [1, 1]]]), { code: 'input', operand: 1, ring: 0, point: 1 });
  wrong({ rings: Int32Array.of(0, 9) }, { code: 'input', operand: 0 });
  wrong({ rings: Int32Array.of(0, -3, 4) }, { code: 'input', operand: 0 });
  wrong({ rings: Int32Array.of(4, 0) }, ZbrError);
  wrong({ polygons: Int32Array.of(0, 7) }, ZbrError);
  wrong({ coords: Float64Array.of(1, 2, 3) }, /a\.coords/);
  wrong({ rings: undefined }, /a\.rings/);
  assert.throws(() => zbr.measure({ coords: [0, 0, 1, 1, 2, 0], rings: [0, 300000000] }), ZbrError);
  assert.throws(() => zbr.union(plate, 7), /b: number is no region/);
  assert.throws(() => zbr.union(plate, bar, { fil: 'nonzero' }), /fil: there is no such option/);
  assert.throws(() => zbr.union(plate, bar, { fill: 'odd' }), /'odd' is none of/);
  assert.throws(() => zbr.combine(plate, bar, ['join']), /'join' is none of/);
  assert.throws(() => zbr.union(plate, bar, { tolerance: NaN }), /tolerance/);
});

test('progress may end a call, and nothing stays behind', () => {
  const a = stars(1, 60), b = stars(2, 60);
  const shares = [];
  zbr.union(a, b, { onProgress: (share) => { shares.push(share); } });
  assert.ok(shares.length > 0 && shares.every((s, i) => s >= 0 && s <= 1 && (i === 0 || s >= shares[i - 1])), `${shares}`);
  assert.throws(() => zbr.union(a, b, { onProgress: () => false }), { name: 'AbortError' });
  assert.throws(() => zbr.union(a, b, { onProgress() { throw new RangeError('mine'); } }), { name: 'RangeError', message: 'mine' });
  assert.throws(() => zbr.union(a, b, { onProgress() { zbr.area(a); } }), ZbrError);
  zbr.union(a, b);
  const { bytes } = zbr.memory;
  for (let i = 0; i < 40; ++i) {
    assert.throws(() => zbr.union(a, b, { onProgress: () => false }));
    assert.throws(() => zbr.union(plate, [[[0, 0], [1, NaN], [1, 1]]]));
    zbr.combine(a, bar, ['union', 'xor'], { sources: i % 2 === 0 });
  }
  assert.equal(zbr.memory.bytes, bytes);
});

test('a module that is none, or another one, is refused', async () => {
  const nothing = Uint8Array.of(0, 97, 115, 109, 1, 0, 0, 0); // compiles
  const named = [7, 15, 1, 11, ...Buffer.from('zbrwCombine'), 3, 0]; // (export "zbrwCombine" (global 0))
  const importing = Uint8Array.of(...nothing, 2, 8, 1, 1, 97, 1, 98, 3, 127, 0, ...named); // (import "a" "b" (global i32))
  const regions = readFileSync(join(folder, 'zbr-regions.wasm'));
  for (const [start, wasm] of [[loadRegions, nothing], [loadRegions, importing], [loadPlanar, importing], [loadPlanar, regions], [loadModels, regions]])
    await assert.rejects(start({ wasm }), { name: 'ZbrError', code: 'load' });
  assert.throws(() => zbr.simplify(plate, 'x'), /^TypeError: tolerance: /);
});
