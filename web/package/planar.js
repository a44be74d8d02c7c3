// Drawings in the plane, from files and into them, beside what 'zbr' has. planar.d.ts is the reference.
import { Zbr } from './calls.js';
import { Instance, ZbrError, bytesOf, textOf } from './instance.js';
import { fromGeoJSON, regionOf, regionOfBuffers, toGeoJSON } from './regions.js';
import createCore from './zbr-planar.mjs';

export { ZbrError, fromGeoJSON, toGeoJSON };

export class ZbrPlanar extends Zbr {
  #instance;

  constructor(instance) {
    super(instance);
    this.#instance = instance;
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
}

/** The module, for a class that has more calls. */
export const start = (wasm) => Instance.load(createCore, wasm ?? new URL('./zbr-planar.wasm', import.meta.url), 'zbrwCombineDrawings');
export const load = async ({ wasm } = {}) => new ZbrPlanar(await start(wasm));
export default load;
