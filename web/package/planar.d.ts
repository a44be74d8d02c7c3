/**
 * Drawings in the plane, read from files and written into them, beside all that 'zbr' has.
 *
 *     import load from 'zbr/planar';
 *     const zbr = await load();
 *     const { results, files } = zbr.combineDrawings({ data, name: 'a.dxf' }, { data: other, name: 'b.svg' }, { formats: ['dxf'] });
 */
import type { FillRule, Op, Progress, Region, RegionLike, Wasm, Zbr } from './index.js';

export { ZbrError, fromGeoJSON, toGeoJSON } from './index.js';

export type Bytes = string | ArrayBuffer | ArrayBufferView;

export interface DrawingFile {
  /** What a DXF, SVG, GeoJSON, WKT or loop file holds. */
  data: Bytes;
  /** The extension tells the format; stands for the file in messages. */
  name?: string;
  format?: 'dxf' | 'svg' | 'geojson' | 'wkt' | 'text';
}

export interface DrawingOptions {
  /** Largest distance between a curve and its chords, in the drawing's unit. */
  deviation?: number;
  /** Ends of lines at most this far apart belong together. */
  join?: number;
  fill?: FillRule;
  /** Files to be written of the results; curves are curves again in DXF. 'svg' is a picture of operands and results. */
  formats?: ('dxf' | 'geojson' | 'wkt' | 'text' | 'svg')[];
  dxf?: 'r12' | 'r2000';
  onProgress?: Progress;
}

export interface DrawnRegion {
  name: string;
  /** With what lies between chords and their arcs. */
  area: number;
  polygons: number;
  holes: number;
  vertices: number;
  /** Curves as chords. */
  region: Region;
}

export interface Note {
  file: string;
  /** Of the file, 0 where it is not known. */
  line: number;
  /** What was left out, or looks wrong. */
  text: string;
}

export interface Combined {
  /** Of both drawings: the first one's; '' where it names none. */
  unit: string;
  notes: Note[];
  operands: DrawnRegion[];
  /** In the order of `ops`. */
  results: DrawnRegion[];
  files: Record<string, string>;
}

export interface ZbrPlanar extends Zbr {
  /** The region of a drawing. */
  readDrawing(drawing: DrawingFile, options?: DrawingOptions): DrawnRegion & Pick<Combined, 'unit' | 'notes' | 'files'>;
  /** Combinations of two drawings: all five by default. */
  combineDrawings(a: DrawingFile, b: DrawingFile, options?: DrawingOptions & { ops?: Op[] }): Combined;
  /** A file with a layer or feature for each region. */
  writeRegions(
    regions: Record<string, RegionLike>,
    format: 'dxf' | 'geojson' | 'wkt' | 'text',
    options?: { unit?: string; dxf?: 'r12' | 'r2000' },
  ): string;
}

/** `wasm` is zbr-planar.wasm beside this file by default. */
export function load(options?: { wasm?: Wasm }): Promise<ZbrPlanar>;
export default load;
