"""Parcels against a flood zone: shapely makes the geometries, zbr overlays them all at once, shapely has the results.

The same loop with shapely alone is the check, and takes some twenty times as long.
"""

import random
import time

import shapely.geometry
import zbr

random.seed(1)
parcels = [shapely.geometry.box(x, y, x + random.uniform(0.5, 1), y + random.uniform(0.5, 1)) for x in range(60) for y in range(60)]
zone = shapely.geometry.LineString([(x * 3, random.uniform(10, 50)) for x in range(22)]).buffer(5)

many, flooded = zbr.Regions.of(parcels), zbr.Region.of(zone)
start = time.perf_counter()
wet = zbr.intersection(many, flooded)
middle = time.perf_counter()
areas = [parcel.intersection(zone).area for parcel in parcels]
end = time.perf_counter()

print(f"{(wet.area > 0).sum()} of {len(parcels)} parcels, {middle - start:.3f} s; shapely {end - middle:.3f} s")
assert abs(wet.area - areas).max() < 1e-9
assert zbr.unite(wet).to_shapely().is_valid
