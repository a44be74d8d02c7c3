// What the types allow and what they refuse; compiled, not run.
import load from '../../build/web/web/package/drawings.js';
import loadRegions, { toGeoJSON, type Region } from '../../build/web/web/package/index.js';
import loadModels from '../../build/web/web/package/models.js';
import loadPlanar from '../../build/web/web/package/planar.js';
import openWorker from '../../build/web/web/package/worker.js';

const regions = await loadRegions();
// @ts-expect-error what only the other module has
regions.readModel(new Uint8Array(3));
const planar = await loadPlanar();
// @ts-expect-error what the module of models has
planar.readModel(new Uint8Array(3));
const svgOfModel: string = (await loadModels()).readModel(new Uint8Array(3)).sheet('svg');
const dxf: string = planar.writeRegions({ a: planar.union([], []) }, 'dxf');
const zbr = await load();
const triangle = [[[0, 0], [1, 0], [1, 1]]] as const;
const region: Region = zbr.union(triangle, { type: 'Polygon', coordinates: [] }, { sources: true, onProgress: (share) => share < 1 });
const model = zbr.readModel(new Uint8Array(3), { name: 'a.stl' });
const views: Float64Array[] = model.draw({ views: ['front', { direction: [1, 2, 3] }, { section: 'X=1' }] }).map((d) => d.coords);
const one: Int32Array = model.draw().lines;
const files: { svg: string; pdf: Uint8Array; shortened: string[] } = model.sheet(['svg', 'pdf']);
const svg: string = model.sheet('svg');
// @ts-expect-error a misspelt option
zbr.union([], [], { fil: 'nonzero' });
// @ts-expect-error no such view
model.draw({ view: 'up' });

const worker = await openWorker({ models: async () => new Uint8Array(3) });
const { signal } = new AbortController();
const united: Region = await worker.union(triangle, [], { signal, fill: 'nonzero' });
const area: number = await worker.area(united);
const remote = await worker.readModel(new Blob([]), { name: 'part.stl', signal });
const coords: Float64Array = (await remote.draw({ view: 'iso', signal })).coords;
const { results } = await worker.combineDrawings({ data: new Blob([]) }, { data: 'x' }, { ops: ['xor'], signal });
export { area, coords, dxf, files, one, region, results, svg, svgOfModel, toGeoJSON, views };
