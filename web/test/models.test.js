// Models and drawings from files: what comes out is what the native tool writes, byte by byte.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { example, hasTool, load, packed3mf, written, zbr as pkg } from './package.js';

const zbr = await load();
const housing = example('housing.obj'), bracket = example('bracket.dxf'), gasket = example('gasket.dxf');
const native = { skip: !hasTool && 'the native tool is not built' };
const bytes = (data) => Buffer.from(data);

const assertSame = (data, expected, name) => assert.ok(bytes(data).equals(expected), `${name} differs`);

function tetrahedron() {
  return zbr.makeModel([0, 0, 0, 4, 0, 0, 0, 4, 0, 0, 0, 4], [0, 2, 1, 0, 1, 3, 1, 2, 3, 0, 3, 2], { name: 'corner' });
}

test('sheets are those of the tool', native, () => {
  const model = zbr.readModel(housing, { name: 'housing.obj' });
  const { shortened, ...files } = model.sheet(['svg', 'dxf', 'pdf', 'json'], { views: ['front', 'top', 'left', 'iso'] });
  assert.deepEqual(shortened, []);
  assert.deepEqual(model.sheet(['svg'], { projection: 'first', author: 'W'.repeat(400) }).shortened, ['Author']);
  for (const [format, data] of Object.entries(files))
    assertSame(data, written(['draw', 'housing.obj', '--view', 'front,top,left,iso'], format), format);
  const look = model.sheet('svg', { views: [{ direction: [1, 2, -1], name: 'look' }], hidden: 'none', crease: 60, scale: '1:3', title: 'T' });
  const args = ['draw', 'housing.obj', '--look', '1,2,-1', '--hidden', 'none', '--crease', '60', '--scale', '1:3', '--title', 'T'];
  assert.ok(bytes(look).equals(written(args, 'svg')));
  const section = ['draw', 'housing.obj', '--view', 'front', '--section', 'Y=20'];
  assertSame(model.sheet('svg', { views: ['front', { section: 'Y=20' }] }), written(section, 'svg'), 'section');
  const eye = model.sheet('svg', { views: [{ eye: [300, -400, 250], name: 'eye' }], centreLines: true });
  assertSame(eye, written(['draw', 'housing.obj', '--eye', '300,-400,250', '--centre-lines'], 'svg'), 'perspective');
  for (const silhouettes of ['facets', 'smooth']) {
    const args = ['draw', 'housing.obj', '--view', 'iso,front', '--silhouettes', silhouettes, '--centre-lines', '--curves', 'off'];
    assertSame(model.sheet('dxf', { views: ['iso', 'front'], silhouettes, centreLines: true, curves: false }), written(args, 'dxf'), silhouettes);
  }
  model.free();
});

test('combinations of drawings are those of the tool', native, () => {
  const ops = ['union', 'intersection', 'a-b', 'b-a', 'xor'];
  const { files, results } = zbr.combineDrawings({ data: bracket, name: 'bracket.dxf' }, { data: gasket, name: 'gasket.dxf' },
    { ops, formats: ['dxf', 'geojson', 'wkt', 'svg'] });
  for (const [format, data] of Object.entries(files))
    assertSame(data, written(['bool', '--op', ops.join(), 'bracket.dxf', 'gasket.dxf'], format), format);
  assert.deepEqual(results.map(({ name }) => name), ops);
  const xor = results[4];
  assert.equal(xor.region.polygons.length - 1, xor.polygons);
  assert.ok(Math.abs(xor.area - results[2].area - results[3].area) < 1e-6);
});

test('a drawing tells its lines and where they come from', () => {
  const model = tetrahedron();
  assert.deepEqual(model.info.high, [4, 4, 4]);
  assert.equal(model.info.closedShells, 1);
  const { coords, lines, classes, hidden, edges, triangles, sides, extent } = model.draw({ view: { direction: [1, 1, 1] }, hidden: 'all' });
  assert.equal(lines.at(-1) * 2, coords.length);
  const length = (isHidden) => hidden.reduce((sum, h, i) => {
    if (Boolean(h) !== isHidden) return sum;
    for (let p = lines[i]; p + 1 < lines[i + 1]; ++p) sum += Math.hypot(coords[2 * p] - coords[2 * p + 2], coords[2 * p + 1] - coords[2 * p + 3]);
    return sum;
  }, 0);
  // Against the slanting face only the three edges of the corner are seen, which are those in front; its border is seen all round.
  assert.ok(Math.abs(length(false) - 3 * 4 * Math.SQRT2 - 3 * 4 * Math.sqrt(2 / 3)) < 1e-9, length(false));
  assert.ok(classes.every((c) => ['crease', 'silhouette'].includes(pkg.edgeClasses[c])));
  assert.equal(edges.at(-1), triangles.length);
  assert.ok(sides.every((s) => s < 3) && triangles.every((t) => t < 4));
  assert.equal(extent.length, 4);
  const [front, top] = model.draw({ views: ['front', 'top'] });
  assert.deepEqual([front.name, top.name], ['front', 'top']);
  assert.equal(zbr.area(model.outline('top')), 8);
  const traced = model.tracedOutline('top');
  assert.deepEqual(traced.region, model.outline('top'));
  const corners = model.mesh().triangles, at = [[0, 0], [4, 0], [0, 4], [0, 0]];
  for (let i = 0; i < 3; ++i) { // each edge of the outline is one of the mesh, and one that is walled up two
    const pieces = Array.from({ length: traced.edges[i + 1] - traced.edges[i] }, (_, k) => traced.edges[i] + k);
    const cornerOf = (k, t) => at[corners[3 * traced.triangles[k] + (traced.sides[k] + t) % 3]];
    const ends = pieces.map((k) => [...cornerOf(k, traced.along[2 * k]), ...cornerOf(k, traced.along[2 * k + 1])]);
    const next = 2 * ((i + 1) % 3), p = traced.region.coords;
    assert.ok(ends.length > 0 && ends.every((end) => end.every((x, j) => x === [p[2 * i], p[2 * i + 1], p[next], p[next + 1]][j])));
  }
  const { triangles: seen, heights } = model.pick('top', [[1, 1], [3, 3]]);
  assert.deepEqual([...seen], [2, -1]);
  assert.ok(Math.abs(heights[0] - 2) < 1e-9 && Number.isNaN(heights[1]));
  assert.deepEqual(model.mesh().triangles.length, 12);
  model.free();
});

test('shells are those that are given', () => {
  const apart = (shells) => zbr.makeModel([0, 0, 0, 4, 0, 0, 0, 4, 0, 0, 0, 4], [0, 2, 1, 0, 1, 3, 1, 2, 3, 0, 3, 2], { shells });
  assert.equal(apart([5, 5, 9, 9]).info.shells, 2);
  assert.equal(apart([0, 1, 2, 3]).info.openEdges, 12);
  assert.throws(() => apart([0, 1]), { name: 'ZbrError', message: /shells/ });
});

test('all formats of models are read', () => {
  const points = [[0, 0, 0], [4, 0, 0], [0, 4, 0], [0, 0, 4]], faces = [[0, 2, 1], [0, 1, 3], [1, 2, 3], [0, 3, 2]];
  const stl = new DataView(new ArrayBuffer(84 + 50 * 4));
  stl.setUint32(80, 4, true);
  faces.forEach((face, f) => face.forEach((v, k) => points[v].forEach((x, axis) => stl.setFloat32(84 + 50 * f + 12 + 12 * k + 4 * axis, x, true))));
  const lines = (list, before = '') => list.map((items) => before + items.join(' ')).join('\n');
  const buffer = Buffer.concat([Buffer.from(Float32Array.from(points.flat()).buffer), Buffer.from(Uint16Array.from(faces.flat()).buffer)]);
  const gltf = { asset: { version: '2.0' }, buffers: [{ byteLength: buffer.length, uri: 'part.bin' }],
    bufferViews: [{ buffer: 0, byteLength: 48 }, { buffer: 0, byteOffset: 48, byteLength: 24 }],
    accessors: [{ bufferView: 0, componentType: 5126, count: 4, type: 'VEC3', min: [0, 0, 0], max: [4, 4, 4] },
      { bufferView: 1, componentType: 5123, count: 12, type: 'SCALAR' }],
    meshes: [{ primitives: [{ attributes: { POSITION: 0 }, indices: 1 }] }], nodes: [{ mesh: 0 }], scenes: [{ nodes: [0] }], scene: 0 };
  const files = {
    'a.stl': stl,
    'a.obj': lines(points, 'v ') + '\n' + lines(faces.map((f) => f.map((v) => v + 1)), 'f ') + '\n',
    'a.off': `OFF\n4 4 0\n${lines(points)}\n${lines(faces, '3 ')}\n`,
    'a.ply': 'ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty float y\nproperty float z\nelement face 4\n' +
      `property list uchar int vertex_indices\nend_header\n${lines(points)}\n${lines(faces, '3 ')}\n`,
    'a.gltf': JSON.stringify(gltf),
  };
  for (const [name, data] of Object.entries(files)) {
    const model = zbr.readModel(data, { name, beside: { 'part.bin': buffer } });
    assert.deepEqual([model.info.triangles, model.info.closedShells], [4, 1], name);
    model.free();
  }
  for (const [name, axes] of [['a.stl', 'y'], ['a.gltf', 'z']]) {
    const model = zbr.readModel(files[name], { name, axes, beside: { 'part.bin': buffer } });
    const front = model.draw({ view: 'front' });
    assert.deepEqual([model.info.axes, front.up['xyz'.indexOf(axes)]], [axes, 1]);
    model.free();
  }
  assert.throws(() => zbr.readModel(files['a.gltf'], { name: 'a.gltf' }), /part\.bin/);
  const blocks = zbr.readModel(packed3mf(), { name: 'a', format: '3mf' });
  assert.deepEqual([blocks.info.triangles, blocks.info.closedShells, ...blocks.info.high], [24, 2, 30, 10, 10]);
  blocks.free();
  assert.throws(() => zbr.readModel(packed3mf().subarray(0, 500), { name: 'a.3mf' }), { code: 'input', message: /^a\.3mf: the archive / });
});

test('bad input is refused with its place', () => {
  const held = zbr.memory.models;
  const read = (data, name) => () => zbr.readModel(data, { name });
  assert.throws(read('v 0 0 0\nv 1 0 x\n', 'a.obj'), { code: 'input', file: 'a.obj', line: 2 });
  assert.throws(read('', 'a.stl'), { code: 'input', message: 'a.stl: the file is empty' });
  assert.throws(read('hello', 'a.xyz'), /not known as a model(?!.*--)/);
  for (let size = 0; size < housing.length; size += 9973) {
    try {
      zbr.readModel(housing.subarray(0, size), { name: 'cut.obj' }).free();
    } catch (error) {
      assert.equal(error.code, 'input', error.stack);
    }
  }
  assert.throws(() => zbr.readDrawing({ data: '0\nSECTION\n2\nENT', name: 'a.dxf' }), { code: 'input' });
  assert.throws(() => zbr.readDrawing({ data: 'POLYGON ((0 0, 1', name: 'a.wkt' }), { code: 'input', line: 1 });
  assert.throws(() => zbr.makeModel([0, 0, 0], [0, 1, 2]), { code: 'input' });
  assert.throws(() => zbr.makeModel([0, 0, NaN, 1, 0, 0, 0, 1, 0], [0, 1, 2]), { code: 'input' });
  assert.throws(() => zbr.makeModel([0, 0, 0], [0, -1, 2]), { code: 'input' });
  const model = tetrahedron();
  assert.throws(() => model.draw({ view: 'up' }), /no view/);
  assert.throws(() => model.draw({ view: { direction: [0, 0, 0] } }), { code: 'input' });
  assert.throws(() => model.draw({ view: { eye: [1, 2] } }), /eye: three finite numbers/);
  assert.throws(() => model.draw({ view: { eye: [9, 9, 9], fov: 200 } }), /eye: .*170/);
  assert.throws(() => model.draw({ view: { eye: [9, 9, 9], direction: [1, 0, 0] } }), /direction: there is no such option/);
  assert.throws(() => model.outline({ section: 'X=1' }), /can only be drawn/);
  assert.throws(() => model.draw({ creases: 3 }), /creases: there is no such option/);
  assert.throws(() => model.sheet('png'), /none of svg, dxf, pdf and json/);
  assert.throws(() => model.sheet('svg', { paper: 'A9' }), { code: 'input' });
  model.free();
  assert.throws(() => model.draw(), { code: 'freed' });
  assert.equal(zbr.memory.models, held);
});

test('progress may end a drawing, and models give their memory back', () => {
  const model = zbr.readModel(housing, { name: 'housing.obj' });
  const stages = new Set();
  const before = model.draw({ onProgress: (_, stage) => { stages.add(stage); } });
  assert.ok(stages.has('removing hidden lines'), [...stages].join());
  assert.throws(() => model.draw({ view: 'top', onProgress: (_, stage) => stage !== 'joining lines' }), { name: 'AbortError' });
  assert.deepEqual(model.draw(), before);
  const { models } = zbr.memory;
  model.draw({ view: 'left', onProgress: () => model.free() }); // it goes when the call is done with it
  assert.equal(zbr.memory.models, models - 1);
  assert.throws(() => model.draw(), { code: 'freed' });
  let bytes;
  for (let i = 0; i < 12; ++i) {
    zbr.readModel(housing, { name: 'housing.obj' }).free();
    if (i === 3) ({ bytes } = zbr.memory);
  }
  assert.equal(zbr.memory.bytes, bytes);
});
