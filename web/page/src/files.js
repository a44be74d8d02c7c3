// Files in and out.
const MODELS = new Set(['stl', 'obj', 'ply', 'off', 'gltf', 'glb', '3mf']);
const DRAWINGS = new Set(['dxf', 'geojson', 'json', 'wkt', 'svg', 'loops', 'txt']);

export const extensionOf = (name) => (name.includes('.') ? name.split('.').pop().toLowerCase() : '');
export const stemOf = (name) => name.replace(/\.[^.]*$/, '');
export const isModel = (file) => MODELS.has(extensionOf(file.name));
export const isDrawing = (file) => DRAWINGS.has(extensionOf(file.name));

const TYPES = { svg: 'image/svg+xml', dxf: 'image/vnd.dxf', pdf: 'application/pdf', geojson: 'application/geo+json', json: 'application/json' };

export function save(name, data) {
  const url = URL.createObjectURL(new Blob([data], { type: TYPES[extensionOf(name)] ?? 'application/octet-stream' }));
  const link = Object.assign(document.createElement('a'), { href: url, download: name });
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(url), 10000);
}

/** Numbers as people read them: six digits, or all before the point. */
export const number = (value) => {
  const size = Math.abs(value);
  if (size !== 0 && (size >= 1e9 || size < 1e-3)) return value.toExponential(4);
  const decimals = Math.max(0, 5 - Math.floor(Math.log10(Math.max(size, 1))));
  return value.toLocaleString('en', { maximumFractionDigits: Math.min(decimals, 4) });
};
export const counted = (count, one, many = `${one}s`) => `${count.toLocaleString('en')} ${count === 1 ? one : many}`;
