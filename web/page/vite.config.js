// The page as static files in build/web/page. The package is the one that was built; its modules are served compressed, as servers of
// plain files compress nothing.
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { gzipSync } from 'node:zlib';
import { defineConfig } from 'vite';

const root = fileURLToPath(new URL('../..', import.meta.url));
const folder = process.env.ZBR_PACKAGE ?? join(root, 'build/web/web/package');
const compressed = join(root, 'build/web/page-module');
mkdirSync(compressed, { recursive: true });
for (const name of ['planar', 'models'])
  writeFileSync(join(compressed, `${name}.wasm.gz`), gzipSync(readFileSync(join(folder, `zbr-${name}.wasm`)), { level: 9 }));

// Those beside the package's sources are never asked for.
const withoutPlainModules = {
  name: 'zbr-without-plain-modules',
  enforce: 'pre',
  transform: (code) => (code.includes('.wasm') ? code.replaceAll(/new URL\('\.\/zbr-\w+\.wasm', import\.meta\.url\)/g, 'undefined') : null),
};

export default defineConfig({
  base: './',
  root: fileURLToPath(new URL('.', import.meta.url)),
  resolve: {
    alias: [
      { find: 'zbr/worker', replacement: join(folder, 'worker.js') },
      { find: 'zbr/index', replacement: join(folder, 'index.js') },
      { find: /^zbr-module/, replacement: compressed },
      { find: 'examples', replacement: join(root, 'examples') },
    ],
  },
  plugins: [withoutPlainModules],
  worker: { format: 'es', plugins: () => [withoutPlainModules] },
  build: { outDir: join(root, 'build/web/page'), emptyOutDir: true, target: 'es2022', assetsInlineLimit: 0, chunkSizeWarningLimit: 800 },
  server: { fs: { allow: [root] } },
});
