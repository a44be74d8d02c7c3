// Every ```js block of docs/web.md is a program that prints what the block behind it shows.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { cpSync, mkdirSync, mkdtempSync, readFileSync, rmSync, symlinkSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { test } from 'node:test';
import { folder, root } from './package.js';

const page = readFileSync(join(root, 'docs/web.md'), 'utf8');
const blocks = [...page.matchAll(/```js\n([^]*?)```\n\n```text\n([^]*?)```/g)];

test('the examples of docs/web.md', () => {
  const scratch = mkdtempSync(join(tmpdir(), 'zbr-docs-'));
  try {
    for (const name of ['housing.obj', 'bracket.dxf', 'gasket.dxf']) cpSync(join(root, 'examples', name), join(scratch, name));
    mkdirSync(join(scratch, 'node_modules'));
    symlinkSync(folder, join(scratch, 'node_modules/zbr'));
    assert.ok(blocks.length >= 3);
    blocks.forEach(([, program, shown], i) => {
      const file = join(scratch, `${i}.mjs`);
      writeFileSync(file, program);
      assert.equal(execFileSync(process.execPath, ['--no-warnings', file], { cwd: scratch, encoding: 'utf8' }), shown);
    });
  } finally {
    rmSync(scratch, { recursive: true });
  }
});
