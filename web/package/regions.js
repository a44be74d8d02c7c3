// Regions as plain data: from what callers have, and back.

const bad = (name, what) => new TypeError(`${name}: ${what}`);

function typed(Type, value, name) {
  if (value instanceof Type) return value;
  if (Array.isArray(value) || (ArrayBuffer.isView(value) && !(value instanceof DataView))) return Type.from(value);
  throw bad(name, `${Type.name} or a list of numbers is needed`);
}

function ofPolygons(polygonList, name) {
  const coords = [], rings = [0], polygons = [0];
  if (!Array.isArray(polygonList)) throw bad(name, 'a list of rings is needed');
  for (const polygon of polygonList) {
    if (!Array.isArray(polygon)) throw bad(name, 'a polygon is a list of rings');
    for (const ring of polygon) {
      if (!Array.isArray(ring)) throw bad(name, 'a ring is a list of points');
      for (const point of ring) {
        if (typeof point?.[0] !== 'number' || typeof point[1] !== 'number') throw bad(name, 'a point is a list of two numbers');
        coords.push(point[0], point[1]);
      }
      rings.push(coords.length / 2);
    }
    polygons.push(rings.length - 1);
  }
  return { coords: Float64Array.from(coords), rings: Int32Array.from(rings), polygons: Int32Array.from(polygons) };
}

function polygonsOf(json, name) {
  switch (json?.type) {
    case 'Polygon': return [json.coordinates];
    case 'MultiPolygon': return json.coordinates;
    case 'Feature': return polygonsOf(json.geometry, name);
    case 'FeatureCollection': return json.features.flatMap((feature) => polygonsOf(feature, name));
    case 'GeometryCollection': return json.geometries.flatMap((geometry) => polygonsOf(geometry, name));
    default: throw bad(name, `${json?.type ?? typeof json} is no region`);
  }
}

/** The arrays of a region, of GeoJSON, or of a list of rings (lists of points). */
export function regionOf(value, name = 'region') {
  if (value?.coords !== undefined) {
    const coords = typed(Float64Array, value.coords, `${name}.coords`);
    const rings = typed(Int32Array, value.rings, `${name}.rings`);
    const polygons = value.polygons == null ? undefined : typed(Int32Array, value.polygons, `${name}.polygons`);
    if (coords.length % 2 !== 0) throw bad(`${name}.coords`, 'pairs of x and y are needed');
    if (rings.length === 0) throw bad(`${name}.rings`, 'offsets begin with 0');
    if (polygons?.length === 0) throw bad(`${name}.polygons`, 'offsets begin with 0');
    return { coords, rings, polygons };
  }
  if (Array.isArray(value)) return ofPolygons([value], name);
  return ofPolygons(polygonsOf(value, name), name);
}

export function regionOfBuffers([coords, rings, polygons]) {
  return { coords: new Float64Array(coords), rings: new Int32Array(rings), polygons: new Int32Array(polygons) };
}

/** A GeoJSON MultiPolygon; rings are closed there. */
export function toGeoJSON({ coords, rings, polygons }) {
  const ring = (r) => {
    const points = [];
    for (let i = rings[r]; i < rings[r + 1]; ++i) points.push([coords[2 * i], coords[2 * i + 1]]);
    if (points.length > 0) points.push([...points[0]]);
    return points;
  };
  const coordinates = [];
  for (let p = 0; p + 1 < polygons.length; ++p) {
    coordinates.push([]);
    for (let r = polygons[p]; r < polygons[p + 1]; ++r) coordinates[p].push(ring(r));
  }
  return { type: 'MultiPolygon', coordinates };
}

export const fromGeoJSON = (json) => regionOf(json, 'json');
