// Booleans of planar regions. index.d.ts is the reference.
import { Zbr } from './calls.js';
import { Instance, ZbrError } from './instance.js';
import { fromGeoJSON, toGeoJSON } from './regions.js';
import createCore from './zbr-regions.mjs';

export { ZbrError, fromGeoJSON, toGeoJSON };

export async function load({ wasm } = {}) {
  return new Zbr(await Instance.load(createCore, wasm ?? new URL('./zbr-regions.wasm', import.meta.url), 'zbrwCombine'));
}
export default load;
