// Drawings in the plane and models in one object, over the module of each. drawings.d.ts is the reference.
import { load as loadModels } from './models.js';
import { ZbrPlanar, start } from './planar.js';

export { Model, edgeClasses } from './models.js';
export { ZbrError, fromGeoJSON, toGeoJSON } from './planar.js';

class ZbrDrawings extends ZbrPlanar {
  #models;

  constructor(instance, models) {
    super(instance);
    this.#models = models;
  }

  readModel(...args) { return this.#models.readModel(...args); }
  makeModel(...args) { return this.#models.makeModel(...args); }

  get memory() {
    const { bytes, models } = this.#models.memory;
    return { bytes: super.memory.bytes + bytes, models };
  }
}

export async function load({ planar, models } = {}) {
  const [instance, withModels] = await Promise.all([start(planar), loadModels({ wasm: models })]);
  return new ZbrDrawings(instance, withModels);
}
export default load;
