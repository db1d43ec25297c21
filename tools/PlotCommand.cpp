#include "tools/PlotCommand.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/Property.h"
#include "foundation/Message.h"
#include "tools/PlotImage.h"
#include "tools/StoreArgument.h"
#include "tools/ToolViews.h"
#include "tools/ToolArguments.h"
#include "tools/ToolProgress.h"

namespace {

long long const kMaxPixels = 64LL << 20;

struct Request {
  std::string attribute;
  unsigned int first;
  unsigned int last;
  bool hasLast;
  double percentile;
  std::string colour;
  std::string x;
  std::string y;
  int size;
  int zoom;
};

// Reads the values of the attributes over the instances, block by block;
// each attribute gives `wanted` values an instance (the first ones).
void readColumns(vHandle<Store> const& store, std::vector<Attribute>& attributes, unsigned int first,
                 unsigned int last, std::size_t wanted, std::vector<std::vector<double> >& columns) {
  long long bytes = 0;
  for (Attribute const& a : attributes) {
    if (a.isVariableLength())
      Message::fatal("PlotCommand::readColumns", 0, "Cannot plot Attribute %s: its length varies.",
                     a.getName().c_str());
    bytes += a.getNBytes();
  }
  columns.assign(attributes.size(), std::vector<double>());
  for (auto& c : columns) c.reserve((last - first + 1ull) * wanted);
  unsigned int const block = StoreArgument::blockSize(bytes);
  ToolProgress progress(last - first + 1ull);
  std::vector<double> values;
  for (unsigned long long from = first; from <= last; from += block) {
    unsigned int const to = static_cast<unsigned int>(std::min<unsigned long long>(last, from + block - 1));
    for (std::size_t k = 0; k < attributes.size(); ++k) {
      store->read(attributes[k], static_cast<unsigned int>(from), to);
      attributes[k].getValues(values);
      std::size_t const length = static_cast<std::size_t>(attributes[k].getLength());
      for (std::size_t i = 0; i + length <= values.size(); i += length)
        columns[k].insert(columns[k].end(), values.begin() + i, values.begin() + i + std::min(wanted, length));
    }
    progress.update(to - first + 1ull);
  }
}

void plotSection(vHandle<Store> const& store, Request const& r, std::string const& out) {
  std::vector<Attribute> attributes = {store->getAttribute(vUCString(r.attribute.c_str()))};
  int const height = attributes[0].getLength();
  long long const width = r.last - r.first + 1LL;
  if (attributes[0].isVariableLength() || height < 1 || width * height > kMaxPixels)
    Message::fatal("PlotCommand::plotSection", 0,
                   "Cannot plot %lld instances of Attribute %s with %d values each: choose fewer with --first and "
                   "--last.",
                   width, r.attribute.c_str(), height);
  std::vector<std::vector<double> > columns;
  readColumns(store, attributes, r.first, r.last, static_cast<std::size_t>(height), columns);
  std::vector<double> const& values = columns[0];

  std::vector<double> magnitudes;
  magnitudes.reserve(values.size());
  for (double v : values)
    if (std::isfinite(v)) magnitudes.push_back(std::fabs(v));
  double clip = 0.0;
  if (!magnitudes.empty()) {
    std::size_t const at = static_cast<std::size_t>(std::floor(r.percentile / 100.0 * (magnitudes.size() - 1)));
    std::nth_element(magnitudes.begin(), magnitudes.begin() + at, magnitudes.end());
    clip = magnitudes[at];
  }
  if (clip <= 0.0) clip = 1.0;

  if (width * height * r.zoom * r.zoom > kMaxPixels)
    Message::fatal("PlotCommand::plotSection", 0, "A picture of %lld by %d pixels is too large.", width * r.zoom,
                   height * r.zoom);
  PlotImage image(static_cast<int>(width) * r.zoom, height * r.zoom);
  PlotImage::Scale const scale = PlotImage::scale(r.colour.empty() ? "grey" : r.colour);
  for (int x = 0; x < image.width(); ++x)
    for (int y = 0; y < image.height(); ++y)
      image.set(x, y, values[static_cast<std::size_t>(x / r.zoom) * height + y / r.zoom] / clip, scale);
  image.write(out);
}

void range(std::vector<double> const& v, double& low, double& high) {
  for (double a : v)
    if (std::isfinite(a)) low = std::min(low, a), high = std::max(high, a);
}

// Where a map's coordinates fall on its picture: the longer side gets the
// whole size, the other keeps the aspect, within a margin of 4 pixels.
struct MapFrame {
  MapFrame(double low, double high, double bottom, double top, int size)
      : x0(low), y0(bottom), span(std::max(std::max(high - low, top - bottom), 1e-300)), inner(size - 2 * margin) {
    width = std::max(1, static_cast<int>(std::lround((high - low) / span * inner))) + 2 * margin;
    height = std::max(1, static_cast<int>(std::lround((top - bottom) / span * inner))) + 2 * margin;
  }
  int px(double x) const { return margin + static_cast<int>(std::lround((x - x0) / span * inner)); }
  int py(double y) const { return height - 1 - margin - static_cast<int>(std::lround((y - y0) / span * inner)); }

  static constexpr int margin = 4;
  double x0, y0, span;
  int inner, width, height;
};

// A map's mark: black, or the value's colour when the map has values. Each
// scale passes through the white of the picture (red-white-blue in its
// middle, grey at its low end), so a coloured mark is edged in black: a
// point with a ring, a line with a shadow a pixel below and to the right.
struct Pen {
  void dot(PlotImage& image, int x, int y, bool black = false) const {
    if (x < 0 || y < 0 || x >= image.width() || y >= image.height()) return;
    if (coloured && !black)
      image.set(x, y, value, scale);
    else
      image.setRGB(x, y, 0, 0, 0);
  }
  // A point: three by three pixels.
  void point(PlotImage& image, int x, int y) const {
    for (int ring = coloured ? 2 : 1; ring >= 1; --ring)
      for (int dx = -ring; dx <= ring; ++dx)
        for (int dy = -ring; dy <= ring; ++dy) dot(image, x + dx, y + dy, ring == 2);
  }
  // The lines through the vertices of a part.
  void path(PlotImage& image, std::vector<std::pair<int, int> > const& ring) const {
    for (int shadow = coloured ? 1 : 0; shadow >= 0; --shadow)
      for (std::size_t k = 0; k < ring.size(); ++k) {
        std::pair<int, int> const& from = ring[k == 0 ? 0 : k - 1];
        line(image, from.first + shadow, from.second + shadow, ring[k].first + shadow, ring[k].second + shadow,
             shadow == 1);
      }
  }
  // Every pixel of the straight line between two, both included.
  void line(PlotImage& image, int x0, int y0, int x1, int y1, bool black) const {
    int const dx = std::abs(x1 - x0), dy = -std::abs(y1 - y0);
    int const sx = x0 < x1 ? 1 : -1, sy = y0 < y1 ? 1 : -1;
    for (int error = dx + dy;;) {
      dot(image, x0, y0, black);
      if (x0 == x1 && y0 == y1) return;
      int const twice = 2 * error;
      if (twice >= dy) error += dy, x0 += sx;
      if (twice <= dx) error += dx, y0 += sy;
    }
  }
  bool coloured;
  double value;
  PlotImage::Scale scale;
};

void plotMap(vHandle<Store> const& store, Request const& r, std::string const& out) {
  std::vector<Attribute> attributes = {store->getAttribute(vUCString(r.x.c_str())),
                                       store->getAttribute(vUCString(r.y.c_str()))};
  if (!r.attribute.empty()) attributes.push_back(store->getAttribute(vUCString(r.attribute.c_str())));
  std::vector<std::vector<double> > columns;
  readColumns(store, attributes, r.first, r.last, 1, columns);
  std::vector<double> const& xs = columns[0];
  std::vector<double> const& ys = columns[1];

  double x0 = HUGE_VAL, x1 = -HUGE_VAL, y0 = HUGE_VAL, y1 = -HUGE_VAL, v0 = HUGE_VAL, v1 = -HUGE_VAL;
  range(xs, x0, x1);
  range(ys, y0, y1);
  if (columns.size() > 2) range(columns[2], v0, v1);
  if (!(x0 <= x1 && y0 <= y1))
    Message::fatal("PlotCommand::plotMap", 0, "No point of the store has a finite %s and %s.", r.x.c_str(),
                   r.y.c_str());
  MapFrame const frame(x0, x1, y0, y1, r.size);
  PlotImage image(frame.width, frame.height);
  Pen pen{columns.size() > 2 && v1 > v0, 0.0, PlotImage::scale(r.colour.empty() ? "rwb" : r.colour)};
  for (std::size_t i = 0; i < xs.size(); ++i) {
    if (!std::isfinite(xs[i]) || !std::isfinite(ys[i])) continue;
    int const px = frame.px(xs[i]), py = frame.py(ys[i]);
    if (pen.coloured) pen.value = 2.0 * (columns[2][i] - v0) / (v1 - v0) - 1.0;
    pen.point(image, px, py);
  }
  image.write(out);
}

// One polyline or polygon: its vertices, and how many of them each part has.
struct Shape {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<int> parts;
  double value;
};

// Polylines and polygons, whose x and y hold every vertex of a shape: each
// part drawn as a line through its vertices, closed into a ring for
// polygons, coloured as the points of a map are.
void plotOutlines(vHandle<Store> const& store, Request const& r, std::string const& out) {
  std::vector<Attribute> attributes = {store->getAttribute(vUCString(r.x.c_str())),
                                       store->getAttribute(vUCString(r.y.c_str()))};
  // Without part lengths a shape is one part.
  std::size_t const parts = store->hasAttribute(vUCString("PART_LENGTHS")) ? attributes.size() : 0;
  if (parts) attributes.push_back(store->getAttribute(vUCString("PART_LENGTHS")));
  std::size_t const coloured = r.attribute.empty() ? 0 : attributes.size();
  if (coloured) {
    attributes.push_back(store->getAttribute(vUCString(r.attribute.c_str())));
    if (attributes.back().isVariableLength())
      Message::fatal("PlotCommand::plotOutlines", 0, "Cannot plot Attribute %s: its length varies.",
                     r.attribute.c_str());
  }
  std::vector<Shape> shapes;
  double x0 = HUGE_VAL, x1 = -HUGE_VAL, y0 = HUGE_VAL, y1 = -HUGE_VAL, v0 = HUGE_VAL, v1 = -HUGE_VAL;
  unsigned int const block = 256;
  ToolProgress progress(r.last - r.first + 1ull);
  std::vector<std::vector<double> > values(attributes.size());
  for (unsigned long long from = r.first; from <= r.last; from += block) {
    unsigned int const to = static_cast<unsigned int>(std::min<unsigned long long>(r.last, from + block - 1));
    for (std::size_t k = 0; k < attributes.size(); ++k) {
      store->read(attributes[k], static_cast<unsigned int>(from), to);
      attributes[k].getValues(values[k]);
    }
    // Each attribute's values of the instances before this one.
    std::vector<std::size_t> at(attributes.size(), 0);
    auto next = [&](std::size_t k, unsigned int i) {
      std::size_t const n = std::min(static_cast<std::size_t>(std::max(0, attributes[k].getLength(i))),
                                     values[k].size() - at[k]);
      std::vector<double> const taken(values[k].begin() + at[k], values[k].begin() + at[k] + n);
      at[k] += n;
      return taken;
    };
    for (unsigned int i = 1; i <= to - from + 1; ++i) {
      Shape s;
      s.x = next(0, i);
      s.y = next(1, i);
      for (double length : parts ? next(parts, i) : std::vector<double>{static_cast<double>(s.x.size())})
        s.parts.push_back(static_cast<int>(length));
      std::vector<double> const value = coloured ? next(coloured, i) : std::vector<double>();
      s.value = value.empty() ? 0.0 : value[0];
      range(s.x, x0, x1);
      range(s.y, y0, y1);
      // A shape without vertices (a null shape) is not drawn, and its value
      // stretches no scale.
      if (coloured && !s.x.empty() && std::isfinite(s.value))
        v0 = std::min(v0, s.value), v1 = std::max(v1, s.value);
      shapes.push_back(std::move(s));
    }
    progress.update(to - r.first + 1ull);
  }
  if (!(x0 <= x1 && y0 <= y1))
    Message::fatal("PlotCommand::plotOutlines", 0, "No shape of the store has a finite %s and %s.", r.x.c_str(),
                   r.y.c_str());
  MapFrame const frame(x0, x1, y0, y1, r.size);
  PlotImage image(frame.width, frame.height);
  Pen pen{v1 > v0, 0.0, PlotImage::scale(r.colour.empty() ? "rwb" : r.colour)};
  bool const rings = store->getSubClass() == vLCString("polygons");
  for (Shape const& s : shapes) {
    if (pen.coloured) pen.value = 2.0 * (s.value - v0) / (v1 - v0) - 1.0;
    std::size_t start = 0;
    for (int length : s.parts) {
      std::size_t const end =
          std::min(std::min(s.x.size(), s.y.size()), start + static_cast<std::size_t>(std::max(0, length)));
      std::vector<std::pair<int, int> > ring;
      for (std::size_t k = start; k < end; ++k)
        if (std::isfinite(s.x[k]) && std::isfinite(s.y[k])) ring.emplace_back(frame.px(s.x[k]), frame.py(s.y[k]));
      if (rings && ring.size() > 2) ring.push_back(ring.front());
      pen.path(image, ring);
      start = end;
    }
  }
  image.write(out);
}

}  // namespace

ToolCommand const& PlotCommand::command() {
  static ToolCommand const c = {
      "plot", "a PNG picture of a seismic section or of the points or shapes of a map",
      "usage: rondo plot STORE --out FILE.png [--attribute NAME] [--first N] [--last M]\n"
      "                  [--clip PERCENT] [--colour grey|rwb] [--zoom N]\n"
      "                  [--x NAME --y NAME] [--size PIXELS] [--view SPEC]...\n"
      "\n"
      "A seismic store gives a variable-density image of its traces (the\n"
      "attribute TRACE unless --attribute names another), one column per trace\n"
      "and one row per sample, clipped at the given percentile of the absolute\n"
      "values (99 by default), in grey (positive dark) or red-white-blue\n"
      "(negative red, positive blue); --zoom N draws each value as N by N\n"
      "pixels. A store of another class, or any store\n"
      "given --x and --y, gives its points on a picture of --size pixels (512),\n"
      "coloured by the value of --attribute; without them the attributes come\n"
      "from the store's property XYZ_PLOT_ATTRIBUTES, else X and Y. Polylines\n"
      "and polygons (an x of many values an instance) are drawn as outlines.\n"
      "\n" TOOL_VIEW_HELP
      "\n"
      "example:\n"
      "  rondo plot line1.sgy --out line1.png --first 1 --last 200 --colour rwb\n"
      "  rondo plot line1.sgy --out shots.png --x SHOT.RW.X --y SHOT.RW.Y --attribute FFID\n"
      "  rondo plot gathers.sgy --out filled.png --view infill --view restore-mute\n",
      "out attribute first last clip colour zoom x y size view", &PlotCommand::run};
  return c;
}

int PlotCommand::run(ToolArguments& arguments) {
  Request r;
  std::string const out = arguments.value("out", "");
  r.attribute = arguments.value("attribute", "");
  r.first = static_cast<unsigned int>(arguments.number("first", 1, 1));
  r.hasLast = arguments.has("last");
  r.last = static_cast<unsigned int>(arguments.number("last", 0, 1));
  r.percentile = arguments.real("clip", 99.0);
  r.colour = arguments.value("colour", "");
  bool const map = arguments.has("x") || arguments.has("y");
  r.x = arguments.value("x", "X");
  r.y = arguments.value("y", "Y");
  r.size = static_cast<int>(arguments.number("size", 512, 16));
  r.zoom = static_cast<int>(arguments.number("zoom", 1, 1));
  std::vector<std::string> const views = arguments.values("view");
  arguments.finish(1, 1);
  if (out.empty()) throw ToolUsageError{"--out FILE.png is needed"};
  if (!(r.percentile > 0.0 && r.percentile <= 100.0))
    throw ToolUsageError{"--clip wants a percentile above 0 and at most 100"};
  if (arguments.has("x") != arguments.has("y")) throw ToolUsageError{"--x and --y go together"};
  if (r.size > 16384) throw ToolUsageError{"--size is at most 16384"};
  if (r.zoom > 64) throw ToolUsageError{"--zoom is at most 64"};
  if (!r.colour.empty() && r.colour != "grey" && r.colour != "gray" && r.colour != "rwb" &&
      r.colour != "red-white-blue")
    throw ToolUsageError{"--colour wants grey or rwb, not '" + r.colour + "'"};

  arguments.setSubject(arguments.positional()[0]);
  vHandle<Store> store = ToolViews::apply(StoreArgument::open(arguments.subject()), views);
  bool const seismic = !map && store->getClass() == vLCString("seismic");
  // An option of the other kind of picture would be taken and do nothing.
  if (seismic && arguments.has("size"))
    throw ToolUsageError{"--size is for a map, and a seismic store is drawn as a section (see --zoom)"};
  if (!seismic && (arguments.has("zoom") || arguments.has("clip")))
    throw ToolUsageError{"--zoom and --clip are for a section, and this store is drawn as a map (see --size)"};
  if (seismic && r.attribute.empty()) r.attribute = "TRACE";
  // A map data set may name its own x, y and value attributes.
  auto const named = store->findProperty(vUCString("XYZ_PLOT_ATTRIBUTES"));
  if (!seismic && !map && named != store->endProperty() && named->getNElements() >= 2) {
    r.x = named->getString(1).c_str();
    r.y = named->getString(2).c_str();
    if (r.attribute.empty() && named->getNElements() >= 3) r.attribute = named->getString(3).c_str();
  }
  // Without --x and --y a map's axes are a guess: one the store lacks is
  // the user's to name, which the store's own message would not say.
  if (!seismic && !map)
    for (std::string const& axis : {r.x, r.y})
      if (!store->hasAttribute(vUCString(axis.c_str())))
        Message::fatal("PlotCommand::run", 0,
                       "A %s store is drawn as a map, and this one has no attribute %s: name the axes with --x "
                       "and --y.",
                       store->getClass().c_str(), axis.c_str());
  unsigned int const n = store->getNInstances();
  // Only a range the user gave is checked against the store; an empty store
  // has nothing to draw, whatever the range.
  if (n == 0 && !r.hasLast && !arguments.has("first"))
    Message::fatal("PlotCommand::run", 0, "There is nothing to draw: the store has no instances.");
  if (!r.hasLast) r.last = n;
  Attribute const probe = store->getAttribute(vUCString(seismic ? r.attribute.c_str() : r.x.c_str()));
  StoreArgument::checkRange(store, probe, r.first, r.last, n);
  if (seismic)
    plotSection(store, r, out);
  else if (probe.isVariableLength())
    plotOutlines(store, r, out);
  else
    plotMap(store, r, out);
  return 0;
}
