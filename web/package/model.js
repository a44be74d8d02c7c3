// A model: what is drawn lies in the module's memory until it is freed, explicitly or by the garbage collector.
import { regionOfBuffers } from './regions.js';
import { ZbrError, textOf } from './instance.js';

const CLASSES = ['smooth', 'border', 'crease', 'junction', 'silhouette', 'tangent', 'intersection', 'cut', 'hatching', 'cutting-plane', 'centre'];
/** Names of the numbers in Drawing.classes. */
export const edgeClasses = Object.freeze(CLASSES);

const forgotten = new FinalizationRegistry(({ instance, generation, number }) => {
  if (instance.generation === generation) instance.release(number);
});

const split = ({ onProgress, ...options }) => [JSON.stringify(options), onProgress];

function pointsOf(points, name) {
  const list = points instanceof Float64Array ? points : Float64Array.from(points.flat?.() ?? points);
  if (list.length % 2 !== 0) throw new TypeError(`${name}: pairs of x and y are needed`);
  return list;
}

export class Model {
  #instance;
  #generation;
  #number;
  #info;

  /** By readModel and makeModel only. */
  constructor(instance, number) {
    this.#instance = instance;
    this.#generation = instance.generation;
    this.#number = number;
    forgotten.register(this, { instance, generation: instance.generation, number }, this);
  }

  #call(name, args, options) {
    if (this.#number === 0) throw new ZbrError('the model was freed', 'freed');
    if (this.#generation !== this.#instance.generation) throw new ZbrError('the model went with a fault of the module', 'freed');
    return this.#instance.call(name, [this.#number, ...args], options);
  }

  get info() {
    this.#info ??= JSON.parse(textOf(this.#call('zbrwModelInfo', [])[0]));
    return this.#info;
  }

  mesh() {
    const [points, triangles] = this.#call('zbrwModelMesh', []);
    return { points: new Float64Array(points), triangles: new Uint32Array(triangles) };
  }

  draw(options = {}) {
    const [text, onProgress] = split({ ...options, views: options.views ?? [options.view ?? 'iso'], view: undefined });
    const [json, ...arrays] = this.#call('zbrwDraw', [], { texts: [text], onProgress });
    const drawings = JSON.parse(textOf(json)).map((facts, i) => {
      const [coords, lines, classes, hidden, shells, edges, triangles, sides] = arrays.slice(8 * i, 8 * i + 8);
      return {
        ...facts,
        coords: new Float64Array(coords),
        lines: new Int32Array(lines),
        classes: new Uint8Array(classes),
        hidden: new Uint8Array(hidden),
        shells: new Int32Array(shells),
        edges: new Int32Array(edges),
        triangles: new Uint32Array(triangles),
        sides: new Uint8Array(sides),
      };
    });
    return options.views ? drawings : drawings[0];
  }

  sheet(formats, options = {}) {
    const list = Array.isArray(formats) ? formats : [formats];
    const [text, onProgress] = split({ ...options, formats: list });
    const arrays = this.#call('zbrwWriteSheet', [], { texts: [text], onProgress });
    const files = list.map((format, i) => (format === 'pdf' ? new Uint8Array(arrays[i]) : textOf(arrays[i])));
    if (!Array.isArray(formats)) return files[0];
    const shortened = JSON.parse(textOf(arrays[list.length]));
    return { ...Object.fromEntries(list.map((format, i) => [format, files[i]])), shortened };
  }

  outline(view = 'iso', options = {}) {
    const [text, onProgress] = split({ ...options, view });
    return regionOfBuffers(this.#call('zbrwOutline', [], { texts: [text], onProgress }));
  }

  tracedOutline(view = 'iso', options = {}) {
    const [text, onProgress] = split({ ...options, view });
    const arrays = this.#call('zbrwTraceOutline', [], { texts: [text], onProgress });
    const [edges, shells, triangles, sides, along] = arrays.slice(3);
    return {
      region: regionOfBuffers(arrays.slice(0, 3)),
      edges: new Int32Array(edges),
      shells: new Int32Array(shells),
      triangles: new Uint32Array(triangles),
      sides: new Uint8Array(sides),
      along: new Float64Array(along),
    };
  }

  pick(view, points) {
    const list = pointsOf(points, 'points');
    const [triangles, heights] = this.#call('zbrwPick', [{ bytes: list }, list.length / 2], { texts: [JSON.stringify({ view })] });
    return { triangles: new Int32Array(triangles), heights: new Float64Array(heights) };
  }

  free() {
    if (this.#number !== 0 && this.#generation === this.#instance.generation) this.#instance.release(this.#number);
    this.#number = 0;
    forgotten.unregister(this);
  }
}
if (Symbol.dispose) Model.prototype[Symbol.dispose] = Model.prototype.free;
