/**
 * Booleans of planar regions. 'zbr/drawings' has hidden-line drawings of triangle meshes, and files, besides.
 *
 *     import load from 'zbr';
 *     const zbr = await load();
 *     const both = zbr.union(a, b);
 *
 * Results are plain data: arrays that belong to the caller. Calls run on the calling thread; 'zbr/worker' has the same ones as
 * promises. The same input gives the same bits as the native library, everywhere.
 *
 * Bad input throws: a TypeError for arguments of a wrong kind, else a ZbrError that says what is wrong, and where.
 */

/**
 * A region in the layout of GeoArrow: x and y interleaved, and offsets that begin with 0 and have one entry more than there are
 * items. In results rings are simple and not closed, outer ones counter-clockwise, each followed by its holes.
 */
export interface Region {
  /** x, y of every point. */
  coords: Float64Array;
  /** Ring r is the points rings[r] up to rings[r + 1]. */
  rings: Int32Array;
  /** Polygon p is the rings polygons[p] up to polygons[p + 1], the outer one first. */
  polygons: Int32Array;
  /** Where the edges come from, if `sources` was asked for. */
  sources?: Sources;
}

/** The edge that starts at point i runs along the pieces offsets[i] up to offsets[i + 1]. */
export interface Sources {
  offsets: Int32Array;
  /** Of each piece: the operand's number, the ring in it, the edge of the ring. */
  edges: Int32Array;
  /** Of each piece: where on that edge it starts and ends, from 0 to 1. */
  along: Float64Array;
}

export type Numbers<T> = T | readonly number[];
export type Points = readonly (readonly [number, number, ...number[]])[];

/** Polygon, MultiPolygon, or what holds them. */
export interface GeoJSON {
  type: string;
  coordinates?: unknown;
  geometry?: unknown;
  geometries?: unknown;
  features?: unknown;
}

/**
 * What regions are taken from: arrays, GeoJSON, or a list of rings, each a list of points. Rings may be in any order and
 * orientation, and cross themselves and each other; the rule of filling tells what is inside.
 */
export type RegionLike =
  | { coords: Numbers<Float64Array>; rings: Numbers<Int32Array>; polygons?: Numbers<Int32Array> }
  | GeoJSON
  | readonly Points[];

/** Many regions one behind the other: region i is the polygons parts[i] up to parts[i + 1]. */
export interface Regions extends Region {
  parts: Int32Array;
}

export type Op = 'union' | 'intersection' | 'a-b' | 'b-a' | 'xor';
export type FillRule = 'evenodd' | 'nonzero' | 'positive' | 'negative';
/** Told the share of the work that is done, and what the call is at; false ends the call with an AbortError. */
export type Progress = (share: number, stage: string) => boolean | void;

export interface RegionOptions {
  /** What is closer than this is one place. Found from the extent of the operands by default. */
  tolerance?: number;
  /** What is inside: 'evenodd' by default. */
  fill?: FillRule;
  fillA?: FillRule;
  fillB?: FillRule;
  /** Adds Region.sources. */
  sources?: boolean;
  /** Rings from their lowest leftmost points on, holes and polygons in the order of these. */
  canonical?: boolean;
  onProgress?: Progress;
}

export interface Fault {
  kind: 'crossing' | 'overlap' | 'fold' | 'repeated_point' | 'no_area' | 'not_finite';
  place: [number, number];
  /** Rings and edges that meet there; -1 where there is none. */
  ringA: number;
  edgeA: number;
  ringB: number;
  edgeB: number;
}

export interface Zbr {
  union(a: RegionLike, b: RegionLike, options?: RegionOptions): Region;
  intersection(a: RegionLike, b: RegionLike, options?: RegionOptions): Region;
  difference(a: RegionLike, b: RegionLike, options?: RegionOptions): Region;
  xor(a: RegionLike, b: RegionLike, options?: RegionOptions): Region;
  /** Several results with one search for crossings. */
  combine(a: RegionLike, b: RegionLike, ops: Op[], options?: RegionOptions): Region[];
  /** Many pairs in one call. */
  combinePairs(a: Regions, b: Regions, op: Op, options?: RegionOptions): Regions;
  unite(regions: RegionLike[], options?: RegionOptions): Region;
  /** What at least `times` of the regions cover. */
  cover(regions: RegionLike[], times: number, options?: RegionOptions): Region;
  /** The region that rings bound, whatever they do to each other. */
  makeValid(rings: RegionLike, options?: RegionOptions): Region;
  /** Without points that lie straight between their neighbours within the tolerance. */
  simplify(rings: RegionLike, tolerance: number, options?: RegionOptions): Region;
  /** The cells into which lines cut the plane: each 'ring' is a line, open unless its last point repeats the first. */
  faces(lines: RegionLike, options?: RegionOptions): Region;
  /** What keeps rings from bounding a region as they are. */
  check(rings: RegionLike, options?: { most?: number }): Fault[];
  /** By the orientation of the rings; bounds are xmin, ymin, xmax, ymax. */
  measure(region: RegionLike): { area: number; perimeter: number; bounds: [number, number, number, number] };
  area(region: RegionLike): number;
  /** 1 inside, 0 on the boundary, -1 outside. */
  locate(region: RegionLike, points: Float64Array | Points, options?: RegionOptions): Int8Array;
  /** What the module has taken. */
  readonly memory: { bytes: number };
}

export class ZbrError extends Error {
  /** 'input', 'memory', 'fault' (of the module, which is renewed), 'freed', 'closed' or 'load'. */
  code: string;
  file?: string;
  line?: number;
  /** The message without the place. */
  reason?: string;
  operand?: number;
  ring?: number;
  point?: number;
}

export function fromGeoJSON(json: GeoJSON): Region;
export function toGeoJSON(region: Region): { type: 'MultiPolygon'; coordinates: number[][][][] };
/** Where a module is, its bytes, or the compiled module. */
export type Wasm = URL | string | BufferSource | Response | WebAssembly.Module;
/** `wasm` is zbr-regions.wasm beside this file by default. */
export function load(options?: { wasm?: Wasm }): Promise<Zbr>;
export default load;
