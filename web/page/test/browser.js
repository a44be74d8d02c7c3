// A browser on the page as it was built, served as any server of files would.
import { createReadStream, existsSync, mkdirSync, readFileSync, statSync } from 'node:fs';
import { createServer } from 'node:http';
import { extname, join, normalize } from 'node:path';
import { fileURLToPath } from 'node:url';
import { gzipSync } from 'node:zlib';
import { chromium } from 'playwright-core';

export const root = fileURLToPath(new URL('../../..', import.meta.url));
const TYPES = { '.html': 'text/html', '.js': 'text/javascript', '.mjs': 'text/javascript', '.css': 'text/css', '.wasm': 'application/wasm' };

/** Serves the files of folders, the first that has one. */
export async function serve(...folders) {
  const sent = { bytes: 0 };
  const server = createServer((request, response) => {
    const path = normalize(decodeURIComponent(new URL(request.url, 'http://x').pathname)).replace(/\/$/, '/index.html');
    const file = folders.map((folder) => join(folder, path)).find((candidate) => existsSync(candidate) && statSync(candidate).isFile());
    if (!file) {
      response.writeHead(404).end();
      return;
    }
    sent.bytes += gzipSync(readFileSync(file)).length; // as servers send it that compress
    response.writeHead(200, { 'content-type': TYPES[extname(file)] ?? 'application/octet-stream' });
    createReadStream(file).pipe(response);
  });
  await new Promise((resolve) => { server.listen(0, '127.0.0.1', resolve); });
  return { url: `http://127.0.0.1:${server.address().port}/`, sent, close: () => server.close() };
}

/** Debian's Chromium; WebGL without a graphics card. */
export const startBrowser = () => chromium.launch({
  executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
  args: ['--no-sandbox', '--disable-dev-shm-usage', '--enable-unsafe-swiftshader', '--use-angle=swiftshader'],
});

const pictures = process.env.ZBR_SCREENSHOTS ?? join(root, 'build/web/screenshots');
mkdirSync(pictures, { recursive: true });
export const shoot = (page, name) => page.screenshot({ path: join(pictures, `${name}.png`) });
