"""What a laser has to cut: a drawing made with ezdxf, less the clearances of another, as a DXF file of its own.

ezdxf makes entities, zbr reads what they bound, arcs and open lines that meet included.
"""

import io

import ezdxf
import zbr


def region_of(document: "ezdxf.document.Drawing", **options: object) -> zbr.Region:
    text = io.StringIO()
    document.write(text)
    return zbr.read("drawing.dxf", data=text.getvalue().encode(), **options)


sheet = ezdxf.new("R2000")
sheet.modelspace().add_lwpolyline([(0, 0), (200, 0), (200, 100), (0, 100)], close=True)
clearances = ezdxf.new("R2000")
for x in (50, 100, 150):
    clearances.modelspace().add_circle((x, 50), 20)

cut = region_of(sheet) - region_of(clearances, deviation=0.01)
zbr.write("cut.dxf", {"CUT": cut}, unit="mm")

check = ezdxf.readfile("cut.dxf")
contours = check.modelspace().query("LWPOLYLINE[layer=='CUT']")
print(f"{len(contours)} contours, area {cut.area:.1f}")
assert len(contours) == 4 and not check.audit().errors
