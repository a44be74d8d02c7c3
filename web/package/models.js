// Models, and drawings of them. models.d.ts is the reference.
import { Instance, ZbrError, bytesOf } from './instance.js';
import { Model, edgeClasses } from './model.js';
import createCore from './zbr-models.mjs';

export { Model, ZbrError, edgeClasses };

class ZbrModels {
  #instance;

  constructor(instance) {
    this.#instance = instance;
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

  get memory() { return { bytes: this.#instance.memory, models: this.#instance.modelCount }; }
}

export async function load({ wasm } = {}) {
  return new ZbrModels(await Instance.load(createCore, wasm ?? new URL('./zbr-models.wasm', import.meta.url), 'zbrwReadModel'));
}
export default load;
