#include "tools/PlotImage.h"

#include <cpl_error.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "foundation/Message.h"

namespace {

void CPL_STDCALL quiet(CPLErr, CPLErrorNum, char const*) {}

unsigned char byte(double v) { return static_cast<unsigned char>(std::lround(std::min(255.0, std::max(0.0, v)))); }

}  // namespace

PlotImage::PlotImage(int width, int height)
    : m_width(width), m_height(height), m_bands(static_cast<std::size_t>(width) * height * 3, 255) {
  if (width <= 0 || height <= 0)
    Message::fatal("PlotImage::PlotImage", 0, "Cannot plot an image of %d by %d pixels.", width, height);
}

void PlotImage::setRGB(int x, int y, unsigned char r, unsigned char g, unsigned char b) {
  std::size_t const plane = static_cast<std::size_t>(m_width) * m_height;
  std::size_t const at = static_cast<std::size_t>(y) * m_width + x;
  m_bands[at] = r;
  m_bands[plane + at] = g;
  m_bands[2 * plane + at] = b;
}

void PlotImage::set(int x, int y, double value, Scale scale) {
  double const v = std::isfinite(value) ? std::max(-1.0, std::min(1.0, value)) : 0.0;
  if (scale == GREY) {
    unsigned char const g = byte((1.0 - v) * 127.5);
    setRGB(x, y, g, g, g);
  } else if (v < 0) {
    unsigned char const fade = byte((1.0 + v) * 255.0);
    setRGB(x, y, 255, fade, fade);
  } else {
    unsigned char const fade = byte((1.0 - v) * 255.0);
    setRGB(x, y, fade, fade, 255);
  }
}

PlotImage::Scale PlotImage::scale(std::string const& name) {
  if (name == "grey" || name == "gray") return GREY;
  if (name == "rwb" || name == "red-white-blue") return RED_WHITE_BLUE;
  Message::fatal("PlotImage::scale", 0, "Unknown colour scale '%s': use grey or rwb.", name.c_str());
}

void PlotImage::write(std::string const& file) const {
  GDALAllRegister();
  CPLPushErrorHandler(quiet);
  CPLErrorReset();
  // The PNG is made in GDAL's memory files and written out here: GDAL does
  // not tell a write that fails at the close (a full disk), and a picture
  // that is not all there must not end in success.
  std::string const memory = "/vsimem/rondo_plot_" + std::to_string(reinterpret_cast<std::uintptr_t>(this)) + ".png";
  GDALDriver* mem = GetGDALDriverManager()->GetDriverByName("MEM");
  GDALDriver* png = GetGDALDriverManager()->GetDriverByName("PNG");
  bool ok = mem != nullptr && png != nullptr;
  if (ok) {
    GDALDataset* image = mem->Create("", m_width, m_height, 3, GDT_Byte, nullptr);
    ok = image != nullptr;
    if (ok) {
      int bands[3] = {1, 2, 3};
      ok = image->RasterIO(GF_Write, 0, 0, m_width, m_height, const_cast<unsigned char*>(m_bands.data()), m_width,
                           m_height, GDT_Byte, 3, bands, 0, 0, 0, nullptr) == CE_None;
      GDALDataset* copy = ok ? png->CreateCopy(memory.c_str(), image, FALSE, nullptr, nullptr, nullptr) : nullptr;
      ok = copy != nullptr;
      if (copy) GDALClose(copy);
      GDALClose(image);
    }
  }
  std::string reason = CPLGetLastErrorMsg();
  CPLPopErrorHandler();
  if (ok) {
    vsi_l_offset size = 0;
    GByte const* bytes = VSIGetMemFileBuffer(memory.c_str(), &size, FALSE);
    std::FILE* out = bytes ? std::fopen(file.c_str(), "wb") : nullptr;
    ok = out != nullptr && std::fwrite(bytes, 1, static_cast<std::size_t>(size), out) == size;
    ok = (out == nullptr || std::fclose(out) == 0) && ok;
    reason = bytes ? std::strerror(errno) : "GDAL made no PNG.";
  }
  VSIUnlink(memory.c_str());
  if (!ok)
    Message::fatal("PlotImage::write", 0, "Cannot write the picture '%s': %s", file.c_str(),
                   reason.empty() ? "GDAL has no PNG driver." : reason.c_str());
}
