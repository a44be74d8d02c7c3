// What is loaded over a network stays as small as it is.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { brotliCompressSync } from 'node:zlib';
import { folder } from './package.js';

const LIMITS = { regions: 121, planar: 243, models: 372 }; // kB as brotli, some two per cent above what they have

for (const [name, limit] of Object.entries(LIMITS)) {
  test(`zbr-${name}.wasm has at most ${limit} kB`, () => {
    const size = brotliCompressSync(readFileSync(join(folder, `zbr-${name}.wasm`))).length;
    assert.ok(size <= limit * 1000, `${size} bytes`);
  });
}
