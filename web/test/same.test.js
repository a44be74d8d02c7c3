// The same bits as the native library: on the inputs of the fingerprint, and on the cases of other projects where they are there.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, readFileSync, readdirSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { digestOfRecord } from './digests.js';
import { load, root } from './package.js';

const build = join(root, 'build');
const fingerprint = join(build, 'web/tests/reliability/fingerprint/zbr-fingerprint.js');
const native = process.env.ZBR_CORPUS ?? join(build, 'release/tests/corpus/zbr-corpus');
const corpus = process.env.ZBR_POLYGON_CORPUS ?? join(root, '../shared/data/polygons');

test('the fingerprint', () => {
  const printed = execFileSync(process.execPath, ['--no-experimental-fetch', fingerprint], { encoding: 'utf8' });
  assert.equal(printed, readFileSync(join(root, 'tests/reliability/fingerprint/expected.txt'), 'utf8'));
});

test('the corpus', { skip: !(existsSync(corpus) && existsSync(native)) && 'no corpus, or no native program to compare with' }, async () => {
  const zbr = await load();
  const files = readdirSync(corpus).filter((name) => name.endsWith('.jsonl'));
  const lines = files.flatMap((name) => readFileSync(join(corpus, name), 'utf8').split('\n').filter(Boolean));
  const ours = lines.map((line) => digestOfRecord(zbr, line)).sort();
  const theirs = execFileSync(native, [corpus, '--digest'], { encoding: 'utf8' }).trim().split('\n').sort();
  assert.ok(ours.length > 0);
  assert.deepEqual(ours, theirs);
});
