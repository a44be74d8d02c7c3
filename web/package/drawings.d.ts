/** All that 'zbr/planar' and 'zbr/models' have in one object; both modules are loaded. */
import type { Wasm } from './index.js';
import type { ZbrModels } from './models.js';
import type { ZbrPlanar } from './planar.js';

export * from './models.js';
export * from './planar.js';

export interface ZbrDrawings extends Omit<ZbrPlanar, 'memory'>, ZbrModels {}

/** zbr-planar.wasm and zbr-models.wasm lie beside this file by default. */
export function load(options?: { planar?: Wasm; models?: Wasm }): Promise<ZbrDrawings>;
export default load;
