// The package under test, and the native tool beside it.
import { execFileSync } from 'node:child_process';
import { existsSync, mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';

export const root = fileURLToPath(new URL('../..', import.meta.url));
export const folder = process.env.ZBR_PACKAGE ?? join(root, 'build/web/web/package');
export const { default: load, ...zbr } = await import(join(folder, 'drawings.js'));
export const { default: loadPlanar } = await import(join(folder, 'planar.js'));
export const { default: loadModels } = await import(join(folder, 'models.js'));
export const { default: loadRegions } = await import(join(folder, 'index.js'));
export const { default: openWorker } = await import(join(folder, 'worker.js'));

export const example = (name) => readFileSync(join(root, 'examples', name));
/** A model of 3MF, packed as other programs do it: two blocks. */
export const packed3mf = () => {
  const cases = readFileSync(join(root, 'tests/app/cases/models.txt'), 'utf8');
  return Buffer.from(/^-- packed\n([\w+/=\n]+)/m.exec(cases)[1], 'base64');
};
export const tool = process.env.ZBR_TOOL ?? join(root, 'build/release/app/zbr');
export const hasTool = existsSync(tool);

/** What the native tool writes for a command that ends with -o. */
export function written(args, extension) {
  const scratch = mkdtempSync(join(tmpdir(), 'zbr-'));
  try {
    const file = join(scratch, `out.${extension}`);
    execFileSync(tool, [...args, '-o', file], { cwd: join(root, 'examples'), stdio: 'pipe' });
    return readFileSync(file);
  } finally {
    rmSync(scratch, { recursive: true });
  }
}

/** Seeded numbers below a bound. */
export function random(seed) {
  let state = seed;
  return (below) => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return Math.floor((state / 2 ** 32) * below);
  };
}
