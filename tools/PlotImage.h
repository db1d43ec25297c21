#ifndef TOOLS_PLOTIMAGE_H
#define TOOLS_PLOTIMAGE_H

// PlotImage: an RGB picture in memory and its colour scales, written as a
// PNG through GDAL (the in-memory driver, then a copy by the PNG driver).
// GDAL's own reports are kept off standard error; a failure is a fatal
// message with GDAL's text.

#include <string>
#include <vector>

class PlotImage {
 public:
  enum Scale { GREY, RED_WHITE_BLUE };

  PlotImage(int width, int height);

  int width() const { return m_width; }
  int height() const { return m_height; }
  // A value from -1 to 1 (clipped beyond) in the scale: grey goes from white
  // to black, red-white-blue from red through white to blue.
  void set(int x, int y, double value, Scale scale);
  void setRGB(int x, int y, unsigned char r, unsigned char g, unsigned char b);
  void write(std::string const& file) const;

  // The scale of a name ("grey", "gray", "rwb", "red-white-blue"); fatal
  // for another.
  static Scale scale(std::string const& name);

 private:
  int m_width;
  int m_height;
  std::vector<unsigned char> m_bands;  // three planes: red, green, blue
};

#endif
