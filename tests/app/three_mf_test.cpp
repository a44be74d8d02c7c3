// Models in 3MF: packages of objects that are placed, copied and spread over documents.
#include <bit>
#include <cstdint>
#include <random>

#include "boxes.h"
#include "support/zip_file.h"
#include "tool.h"

namespace {

std::string Object(int id, const std::string& contents) {
  return "<object id=\"" + std::to_string(id) + "\">" + contents + "</object>\n";
}

// The unit box.
std::string BoxMesh() {
  const Box box = {{0, 0, 0}, {1, 1, 1}};
  std::ostringstream xml;
  xml << "<mesh><vertices>";
  for (int k = 0; k < 8; ++k)
    xml << "<vertex x=' " << box.Corner(k)[0] << "\t' y='" << box.Corner(k)[1] << "' z='" << box.Corner(k)[2] << "'/>";
  xml << "</vertices><triangles>";
  for (const auto& t : Box::kTriangles) xml << "<triangle v1='" << t[0] << "' v2='" << t[1] << "' v3='" << t[2] << "'/>";
  xml << "</triangles></mesh>";
  return xml.str();
}

// Copies of an object: what else each says of itself.
std::string Copies(int id, const std::vector<std::string>& attributes) {
  std::string xml = "<components>";
  for (const std::string& more : attributes) xml += "<component objectid=\"" + std::to_string(id) + "\" " + more + "/>";
  return xml + "</components>";
}

std::string Document(const std::string& objects, const std::string& items, const std::string& attributes = "") {
  return "<?xml version='1.0'?>\n<model " + attributes + ">\n<resources>\n" + objects + "</resources>\n<build>" + items +
         "</build></model>";
}

std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (; times > 0; --times) all += text;
  return all;
}

std::string Package(const std::string& document) {
  return ZipFile({{"3D/3dmodel.model", document}});
}

const char* const kItem = "<item objectid='1'/>";
const char* const kInches =
    "unit='inch' xmlns:p='http://schemas.microsoft.com/3dmanufacturing/production/2015/06' requiredextensions='p'";

// A box, a mirrored copy beside it, and a box of another document, in feet, turned by a quarter and raised; and its support.
TEST_F(Tool, ThreeMfPlacesWhatItHolds) {
  const std::string copies = Copies(1, {"", "transform='-1 0 0 0 1 0 0 0 1 4 0 0'"});
  const std::string items =
      "<item objectid='2'/><item objectid='7' p:path='/3D/other.model' transform='0 2 0 -1 0 0 0 0 1 33 0 0.5'/>"
      "<item objectid='3' transform='1 0 0 0 1 0 0 0 1 0 0 -1'/>";
  const std::string support = "<object id='3' type='support'>" + BoxMesh() + "</object>";
  const std::string relations = "<Relationships><Relationship Target='/3D/Main.model' Type='http://x/3dmodel'/></Relationships>";
  Write("m.3mf", ZipFile({{"_rels/.rels", relations},
                          {"3D/other.model", Document(Object(7, BoxMesh()), "", "unit='foot'")},
                          {"3D/main.model", Document(Object(1, BoxMesh()) + Object(2, copies) + support, items, kInches)}}));
  const double inch = 25.4, foot = 304.8 / 25.4 * inch;
  Write("m.obj", ObjText({{{0, 0, 0}, {inch, inch, inch}},
                          {{3 * inch, 0, 0}, {inch, inch, inch}},
                          {{21 * inch, 0, 0.5 * inch}, {12 * inch, 2 * foot, foot}}}));
  EXPECT_EQ(Output("info m.3mf | tail -n +3"), Output("info m.obj | tail -n +3")) << "closed and facing outwards, mirrored or not";
  EXPECT_EQ(Output("outline m.3mf --view top -o - --format wkt"), Output("outline m.obj --view top -o - --format wkt"));
}

// As files of their own would be: neither joined where they touch nor taken for one in sections.
TEST_F(Tool, ThreeMfBodiesStayApart) {
  const std::string up = "transform='1 0 0 0 1 0 0 0 1 0 0 1'", aside = "transform='1 0 0 0 1 0 0 0 1 1 0 0'";
  Write("m.3mf", Package(Document(Object(1, BoxMesh()) + Object(2, Copies(1, {"", up})),
                                  "<item objectid='2'/><item objectid='1' " + aside + "/>")));
  Write("m.obj", ObjText({{{0, 0, 0}, {1, 1, 1}}}));
  EXPECT_EQ(Info("m.3mf", "shells"), "3");
  EXPECT_NE(Info("m.3mf", "clean"), "");
  const std::string draw = "draw --view top --section Y=0.5 --title m -o - --format dxf ";
  const std::string objects = "m.obj --object m.obj,0,0,1 --object m.obj,1,0,0";
  EXPECT_EQ(Output(draw + "m.3mf"), Output(draw + objects));
  const std::string fills = " --fill -o - --format svg | sed -n 's/<title>.*//; /fill=/p'";
  const Outcome filled = Shell("zbr draw m.3mf" + fills);
  EXPECT_EQ(filled.out, Shell("zbr draw " + objects + fills).out);
  EXPECT_NE(filled.out.find("-fill-2"), std::string::npos);
  // The first box from below, which hides the second one: no note, as something of the file is seen.
  EXPECT_EQ(filled.err + Shell("zbr draw m.3mf --view bottom --fill -o b.svg").err, "");
}

// By another program at several levels: codes of all lengths, copies from near and far, and blocks as they are. The archive's check
// sum tells whether all that comes out is right.
TEST_F(Tool, ThreeMfPackedByGzip) {
  std::mt19937 random(1);
  std::string noise, skewed;
  for (int k = 0; k < 70000; ++k) {
    noise += static_cast<char>(random() % 256);
    if (noise.back() == '-') noise.back() = '+';
    skewed += static_cast<char>('a' + std::countr_zero(static_cast<std::uint32_t>(random()) | 1U << 20U));
  }
  const std::string part = noise.substr(0, 30000);
  for (const std::string& comment : {std::string(), std::string(100000, ' '), skewed + noise, part + part}) {
    for (const char* level : {"1", "6", "9"}) {
      const std::string document = Document(Object(1, BoxMesh()), kItem) + "<!--" + comment + "-->";
      Write("m.model", document);
      ASSERT_EQ(Shell(std::string("gzip -n -") + level + " <m.model >m.gz").code, 0);
      const std::string packed = Read("m.gz");
      Write("m.3mf", ZipFile({{"3D/3dmodel.model", document, packed.substr(10, packed.size() - 18)}}, *level == '9'));
      EXPECT_EQ(Info("m.3mf", "triangles"), "12") << level << " " << comment.size();
    }
  }
}

// A comment behind the directory may hold what looks like the end of an archive.
TEST_F(Tool, ThreeMfWithAComment) {
  const std::string comment = "PK\5\6 is no end, nor is this PK\5\6";
  std::string package = Package(Document(Object(1, BoxMesh()), kItem));
  package.replace(package.size() - 2, 2, Little(comment.size(), 2));
  Write("m.3mf", package + comment);
  EXPECT_NE(Output("info m.3mf").find("closed surfaces"), std::string::npos);
}

TEST_F(Tool, ThreeMfThatIsBroken) {
  std::string doubling = Object(1, BoxMesh());
  for (int id = 2; id < 60; ++id) doubling += Object(id, Copies(id - 1, {"", ""}));
  const std::string good = Package(Document(Object(1, BoxMesh()), kItem));
  std::string damaged = good, encrypted = good, huge = good;
  damaged[damaged.find("x=' 1") + 4] = '2';
  const std::size_t entry = good.find("PK\1\2");
  encrypted[entry + 8] = 1;
  huge.replace(entry + 24, 4, "\xff\xff\xff\x7f");
  const std::string point = "<mesh><vertices>\n<vertex x='0' y='nan' z='0'/></vertices></mesh>";
  const std::string corner =
      "<mesh><vertices><vertex x='0' y='0' z='0'/></vertices><triangles><triangle v1='0' v2='0' v3='1'/></triangles></mesh>";
  const std::string place = ": 3D/3dmodel.model:";
  const struct {
    std::string file, error;
  } kCases[] = {
      {"text", ": is no ZIP archive, which 3MF files are"},
      {good.substr(0, good.size() - 30), ": the archive ends too early"},
      {damaged, ": '3D/3dmodel.model' is damaged: its check sum differs"},
      {encrypted, ": '3D/3dmodel.model' is encrypted"},
      {huge, ": unpacks to more than a gigabyte"},
      {Package(Document("<a" + Repeated(" b=''", 2000) + "/>", "")), ": 3D/3dmodel.model:4: too many attributes"},
      {ZipFile({{"a", "b"}}), ": is no 3MF: there is no part '3D/3dmodel.model'"},
      {Package("<svg/>"), place + "1: a 3MF model expected"},
      {Package("<model>"), place + "1: the file ends within 'model'"},
      {Package("\xff\xfe<"), ": 3D/3dmodel.model: is text in UTF-16; save it in UTF-8"},
      {Package(Document("", "")), ": 3D/3dmodel.model: nothing is to be built: its build has no item"},
      {Package(Document("<object id='1' type='other'/>", kItem)),
       ": 3D/3dmodel.model: nothing is to be built but supports and other things that are no part"},
      {Package(Document(Object(1, point), kItem)), place + "5: 'nan' is not a finite number"},
      {Package(Document(Object(1, corner), kItem)), place + "4: point '1' of a triangle is not among the 1"},
      {Package(Document(Object(1, Copies(1, {""})), kItem)), place + "4: there is no object 1 before this"},
      {Package(Document(Object(1, Copies(1, {"p:path='/3D/3dmodel.model'"})), kItem)),
       place + "4: there is no object 1 in '3D/3dmodel.model'"},
      {Package(Document(doubling, "<item objectid='59'/>")), place + "27: too many points and triangles"},
      {Package(Document(Object(1, BoxMesh()), "<item objectid='1' transform='1 0 0'/>")),
       place + "6: a transform of 3 numbers, not 12"},
      {Package(Document("", "", "unit='furlong'")), place + "2: the unit 'furlong' is unknown"},
      {Package(Document("", "", "xmlns:b='http://x/beamlattice/2017/02' requiredextensions='b'")),
       place + "2: requires the extension 'http://x/beamlattice/2017/02', which is not supported"},
  };
  for (const auto& c : kCases) {
    Write("m.3mf", c.file);
    const Outcome outcome = Run("info m.3mf");
    EXPECT_EQ(outcome.err, "m.3mf" + c.error + "\n");
    EXPECT_EQ(outcome.code, 2);
  }
}

}  // namespace
