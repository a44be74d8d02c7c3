/**
 * Hidden-line drawings of triangle meshes.
 *
 *     import load from 'zbr/models';
 *     const zbr = await load();
 *     const model = zbr.readModel(bytes, { name: 'part.stl' });
 *     const svg = model.sheet('svg', { views: ['front', 'top', 'left'] });
 *
 * Only models hold memory of the module; free() gives it back, and so does the garbage collector in the end.
 */
import type { Numbers, Points, Progress, Region, Wasm } from './index.js';
import type { Bytes } from './planar.js';

export { ZbrError } from './index.js';

export interface ModelOptions {
  /** The extension tells the format. */
  name?: string;
  format?: 'stl' | 'obj' | 'ply' | 'off' | 'gltf' | 'glb' | '3mf';
  /** An edge shows where the surface bends by more than this many degrees; 30 by default. */
  crease?: number;
  /** Points closer than this part of the diagonal become one; 0 joins equal ones. */
  weld?: number;
  /** Which axis points up: what the format says by default, 'y' in glTF and 'z' elsewhere. */
  axes?: 'y' | 'z';
  onProgress?: Progress;
}

export interface ModelInfo {
  name: string;
  triangles: number;
  /** Triangles with two equal corners, or repeated. */
  leftOut: number;
  points: number;
  shells: number;
  closedShells: number;
  /** Edges of one triangle, of three and more, and along which two run the same way. */
  openEdges: number;
  junctions: number;
  turnedEdges: number;
  low: [number, number, number];
  high: [number, number, number];
  /** Which axis points up. */
  axes: 'y' | 'z';
  /** Many creases end nowhere, as on a scan: a larger angle suits it. */
  roughCreases: boolean;
}

export type ViewName = 'front' | 'back' | 'left' | 'right' | 'top' | 'bottom' | 'iso' | 'dimetric';
type Vector = [number, number, number];
/**
 * Seen along `direction`, with `up` drawn upwards. Or in perspective from `eye` to `at` (the middle of the model by default), with
 * `fov` cut off at this angle in degrees. Or cut by a plane, 'X=10' or '1,0,1=20' (a direction, and how far from the origin),
 * 'X=10..25' for what lies between two, and seen against that direction.
 */
export type View =
  | ViewName
  | { direction: Vector; up?: Vector; name?: string }
  | { eye: Vector; at?: Vector; up?: Vector; fov?: number; name?: string }
  | { section: string };

export interface ViewOptions {
  view?: View;
  /** Several views; a list comes back, or a sheet with all of them. */
  views?: View[];
  /** In which views hidden lines are wanted: by default in those along an axis. */
  hidden?: 'none' | 'principal' | 'all';
  /** Another angle than the model was opened with. */
  crease?: number;
  /** Lines where surfaces pass through each other; true by default. */
  intersections?: boolean;
  /** Smooth edges at which fillets end; false by default. */
  tangents?: boolean;
  /** Where curved surfaces turn away: along edges of facets, or on the smooth surface that these stand for, as by default on scans. */
  silhouettes?: 'facets' | 'smooth';
  /** Arcs where the model has circles; true by default. */
  curves?: boolean;
  /** Centre lines of circles, on sheets, but not in perspectives; false by default. */
  centreLines?: boolean;
  /** Bodies at most this far apart stand face to face. */
  contact?: number;
  axes?: 'y' | 'z';
  onProgress?: Progress;
}

/** The lines of a view, in the model's unit, x to the right and y up, around the middle of the model's box. */
export interface Drawing {
  name: string;
  /** The drawing's axes in the model. */
  right: [number, number, number];
  up: [number, number, number];
  /** The origin, in the view's axes. */
  middle: [number, number];
  /** xmin, ymin, xmax, ymax. */
  extent: [number, number, number, number];
  coords: Float64Array;
  /** Line i is the points lines[i] up to lines[i + 1]; of a closed one the last repeats the first. Visible ones come first. */
  lines: Int32Array;
  /** Why it is drawn: a place in edgeClasses. */
  classes: Uint8Array;
  hidden: Uint8Array;
  shells: Int32Array;
  /** Line i is made of the mesh's edges edges[i] up to edges[i + 1]: `triangles`, and which side of each (3: across it). */
  edges: Int32Array;
  triangles: Uint32Array;
  sides: Uint8Array;
}

/** An outline and the edges of the mesh that it runs along. */
export interface TracedOutline {
  region: Region;
  /**
   * The region's edge from point i to the next of its ring runs along the pieces edges[i] up to edges[i + 1], one after the other or,
   * where edges of the mesh lie over each other, side by side.
   */
  edges: Int32Array;
  /** Of the pieces: the shell, the triangle, and which side of it. */
  shells: Int32Array;
  triangles: Uint32Array;
  sides: Uint8Array;
  /** Two parameters of each piece, where it begins and ends along the side: 0 is the corner that the side starts at. */
  along: Float64Array;
}

export interface SheetOptions extends Omit<ViewOptions, 'view'> {
  /** How several views are arranged: 'first' by default. */
  projection?: 'none' | 'first' | 'third';
  hiddenStyle?: 'none' | 'dashed' | 'layer';
  tangentStyle?: 'thin' | 'layer';
  /** '1:2', 0.5, or 'fit' for any scale; the largest standard one that fits by default. */
  scale?: string | number;
  /** 'A3' or '420x297'. */
  paper?: string;
  title?: string;
  number?: string;
  author?: string;
  date?: string;
  /** Of the model; 'mm' by default. */
  unit?: string;
  /** Objects are filled. */
  fill?: boolean;
  dxf?: 'r12' | 'r2000';
}

export interface SheetFiles {
  svg: string;
  dxf: string;
  json: string;
  pdf: Uint8Array;
}

export interface SheetNotes {
  /** Fields of the title block that had no room for all of their text: 'Title', 'Number', 'Author', 'Date'. */
  shortened: string[];
}

/** A model in the module's memory. */
export class Model {
  private constructor();
  readonly info: ModelInfo;
  /** x, y, z of the points and corners of the triangles, as read. */
  mesh(): { points: Float64Array; triangles: Uint32Array };
  draw(options: ViewOptions & { views: View[] }): Drawing[];
  draw(options?: ViewOptions): Drawing;
  /** Views on paper. Views that were drawn last are not drawn again. */
  sheet<F extends keyof SheetFiles>(format: F, options?: SheetOptions): SheetFiles[F];
  sheet<F extends keyof SheetFiles>(formats: F[], options?: SheetOptions): Pick<SheetFiles, F> & SheetNotes;
  /** What the model covers, in its own coordinates. */
  outline(view?: View, options?: { onProgress?: Progress }): Region;
  /** The same, and where it comes from. */
  tracedOutline(view?: View, options?: { onProgress?: Progress }): TracedOutline;
  /** What is seen at points of a view in the model's coordinates: triangles (-1: nothing) and heights towards the viewer. */
  pick(view: View, points: Float64Array | Points): { triangles: Int32Array; heights: Float64Array };
  /** Gives its memory back. */
  free(): void;
}

export interface ZbrModels {
  /** A model from what a file holds. `beside`: other files that a glTF document names. */
  readModel(data: Bytes, options?: ModelOptions & { beside?: Record<string, Bytes> }): Model;
  /**
   * A model from arrays: x, y, z of points, and three corners of each triangle. `shells`: which shell each triangle is of, by any
   * numbers; without them what hangs together by edges is a shell.
   */
  makeModel(
    points: Numbers<Float64Array>,
    triangles: Numbers<Uint32Array>,
    options?: Omit<ModelOptions, 'format'> & { shells?: Numbers<Uint32Array> },
  ): Model;
  /** What the module has taken, and the models that are held. */
  readonly memory: { bytes: number; models: number };
}

export const edgeClasses: readonly string[];
/** `wasm` is zbr-models.wasm beside this file by default. */
export function load(options?: { wasm?: Wasm }): Promise<ZbrModels>;
export default load;
