// The page as static files in build/web/page. The package is the one that was built; its module is served compressed, as servers of
// plain files compress nothing.
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { gzipSync } from 'node:zlib';
import { defineConfig } from 'vite';

const root = fileURLToPath(new URL('../..', import.meta.url));
const folder = process.env.ZBR_PACKAGE ?? join(root, 'build/web/web/package');
const compressed = join(root, 'build/web/page-module/zbr-core.wasm.gz');
mkdirSync(join(compressed, '..'), { recursive: true });
writeFileSync(compressed, gzipSync(readFileSync(join(folder, 'zbr-core.wasm')), { level: 9 }));

// The one beside the package's sources is never asked for.
const withoutPlainModule = {
  name: 'zbr-without-plain-module',
  enforce: 'pre',
  transform: (code, id) =>
    id.endsWith('/instance.js') ? code.replace("new URL('./zbr-core.wasm', import.meta.url)", 'undefined') : null,
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
  plugins: [withoutPlainModule],
  worker: { format: 'es', plugins: () => [withoutPlainModule] },
  build: { outDir: join(root, 'build/web/page'), emptyOutDir: true, target: 'es2022', assetsInlineLimit: 0, chunkSizeWarningLimit: 800 },
  server: { fs: { allow: [root] } },
});
