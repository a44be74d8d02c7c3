/**
 * The calls of 'zbr' as promises, worked on by a worker of its own.
 *
 *     import openWorker from 'zbr/worker';
 *     const zbr = await openWorker();
 *     const model = await zbr.readModel(file, { name: file.name });
 *     const drawing = await model.draw({ view: 'iso', signal, onProgress });
 *
 * A signal that is aborted ends the call at once, and the worker with it; the next call gets another. Models are opened again there
 * when they are next used. Of the three modules each is loaded by the first call that needs it.
 */
import type { Bytes, Drawing, DrawingFile, ModelInfo, ModelOptions, SheetFiles, SheetNotes, SheetOptions, TracedOutline, View, ViewOptions, ZbrDrawings } from './drawings.js';
import type { Region, Wasm } from './index.js';

type Signal = { signal?: AbortSignal };
type WithSignal<A extends unknown[]> = A extends [...infer Rest, (infer O extends object)?] ? [...Rest, (O & Signal)?] : A;
type Later<F> = F extends (...args: infer A) => infer R ? (...args: WithSignal<A>) => Promise<R> : never;
type FileOf<T> = T extends DrawingFile ? Omit<DrawingFile, 'data'> & { data: Bytes | Blob } : T;

export interface WorkerModel {
  readonly info: ModelInfo;
  mesh(options?: Signal): Promise<{ points: Float64Array; triangles: Uint32Array }>;
  draw(options: ViewOptions & { views: View[] } & Signal): Promise<Drawing[]>;
  draw(options?: ViewOptions & Signal): Promise<Drawing>;
  sheet<F extends keyof SheetFiles>(format: F, options?: SheetOptions & Signal): Promise<SheetFiles[F]>;
  sheet<F extends keyof SheetFiles>(formats: F[], options?: SheetOptions & Signal): Promise<Pick<SheetFiles, F> & SheetNotes>;
  outline(view?: View, options?: Pick<ViewOptions, 'onProgress'> & Signal): Promise<Region>;
  tracedOutline(view?: View, options?: Pick<ViewOptions, 'onProgress'> & Signal): Promise<TracedOutline>;
  pick(view: View, points: Float64Array, options?: Signal): Promise<{ triangles: Int32Array; heights: Float64Array }>;
  free(): Promise<void>;
}

type Region1 = 'union' | 'intersection' | 'difference' | 'xor' | 'combine' | 'combinePairs' | 'unite' | 'cover' | 'makeValid' | 'simplify';
type Region2 = 'faces' | 'check' | 'measure' | 'area' | 'locate' | 'writeRegions';

export type ZbrWorker = { [K in Region1 | Region2]: Later<ZbrDrawings[K]> } & {
  readDrawing(drawing: FileOf<DrawingFile>, options?: Parameters<ZbrDrawings['readDrawing']>[1] & Signal): Promise<ReturnType<ZbrDrawings['readDrawing']>>;
  combineDrawings(
    a: FileOf<DrawingFile>,
    b: FileOf<DrawingFile>,
    options?: Parameters<ZbrDrawings['combineDrawings']>[2] & Signal,
  ): Promise<ReturnType<ZbrDrawings['combineDrawings']>>;
  /** From a File or Blob, or bytes, which have to stay as they are. */
  readModel(
    data: Bytes | Blob,
    options?: ModelOptions & { beside?: Record<string, Bytes | Blob> } & Signal,
  ): Promise<WorkerModel>;
  makeModel(points: Float64Array, triangles: Uint32Array, options?: Parameters<ZbrDrawings['makeModel']>[2] & Signal): Promise<WorkerModel>;
  /** Ends the worker. Calls that are not done fail. */
  close(): void;
};

/** Where a module is, or a function that tells so when it is first needed. */
export type Source = Wasm | (() => Wasm | Promise<Wasm>);
/** Sources of the modules that are not beside this file. */
export function openWorker(options?: { regions?: Source; planar?: Source; models?: Source }): Promise<ZbrWorker>;
export default openWorker;
