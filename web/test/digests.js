// Digests of results, in node and in browsers alike.

/** FNV-1a over the bytes of arrays. */
export function digest(...arrays) {
  let hash = 2166136261;
  for (const array of arrays) {
    for (const byte of new Uint8Array(array.buffer, array.byteOffset, array.byteLength)) hash = Math.imul(hash ^ byte, 16777619);
  }
  return (hash >>> 0).toString(16).padStart(8, '0');
}

const OPS = new Set(['union', 'intersection', 'xor']);
const RULES = new Set(['nonzero', 'positive', 'negative']);

/** What tests/corpus/corpus.cpp prints for a line of its records. */
export function digestOfRecord(zbr, line) {
  const { suite, id, op, fill, a, b, more = [], unary } = JSON.parse(line);
  const rule = RULES.has(fill) ? fill : 'evenodd';
  const others = unary ? [] : [b, ...more];
  let result = zbr.makeValid(a.flat(), { fill: rule });
  for (const other of others) [result] = zbr.combine(result, other.flat(), [OPS.has(op) ? op : 'a-b'], { fillB: rule });
  return `${suite}/${id} ${digest(result.coords, result.rings, result.polygons)}`;
}
