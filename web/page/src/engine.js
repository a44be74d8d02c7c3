// The worker that does all the work, and the tasks it is given: one at a time, with progress shown once it takes a moment.
import openWorker from 'zbr/worker';
import modelsUrl from 'zbr-module/models.wasm.gz?url';
import planarUrl from 'zbr-module/planar.wasm.gz?url';

async function bytesAt(url) {
  const response = await fetch(url);
  if (!response.ok) throw new Error(`${url}: ${response.status} ${response.statusText}`);
  const bytes = new Uint8Array(await response.arrayBuffer());
  const isPacked = bytes[0] === 0x1f && bytes[1] === 0x8b; // some servers unpack it on the way
  return isPacked ? new Response(new Blob([bytes]).stream().pipeThrough(new DecompressionStream('gzip'))) : bytes;
}

// A module is fetched when the first model or drawing is opened.
let opening;
export const engine = () => (opening ??= openWorker({ planar: () => bytesAt(planarUrl), models: () => bytesAt(modelsUrl) }));

const byId = (id) => document.getElementById(id);
const DELAY = 250; // ms until progress is shown; what is quicker would flicker
let current;

/** Runs a task with { signal, onProgress }; a later one ends those before it. Answers undefined when it was ended. */
export async function task(work) {
  current?.abort.abort();
  const mine = current = { abort: new AbortController() };
  const timer = setTimeout(() => { byId('progress').hidden = false; }, DELAY);
  const onProgress = (share, stage) => {
    if (current !== mine) return;
    byId('share').value = share;
    byId('stage').textContent = stage;
  };
  onProgress(0, 'opening');
  try {
    return await work({ signal: mine.abort.signal, onProgress });
  } catch (error) {
    if (error.name === 'AbortError') return undefined;
    throw error;
  } finally {
    clearTimeout(timer);
    if (current === mine) {
      byId('progress').hidden = true;
      current = undefined;
    }
  }
}

export const isBusy = () => current !== undefined;
export function cancel() {
  if (!current) return false;
  current.abort.abort();
  return true;
}
