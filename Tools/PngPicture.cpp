#include "Tools/PngPicture.h"

#include <cerrno>
#include <cstdlib>

void failOfPng(png_structp, png_const_charp message) {
  std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, message);
  std::exit(EXIT_FAILURE);
}

void ignoreWarningOfPng(png_structp, png_const_charp) {}

std::vector<png_bytep> PngPicture::rows() {
  std::vector<png_bytep> result(height);
  for (png_uint_32 y = 0; y < height; ++y) {
    result[y] = pixels.data() + rowSize * y;
  }
  return result;
}

PngPicture readPng(std::FILE* file) {
  PngPicture picture;
  png_structp png =
      png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, failOfPng, ignoreWarningOfPng);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_read_info(png, info);
  picture.width = png_get_image_width(png, info);
  picture.height = png_get_image_height(png, info);
  picture.bitDepth = png_get_bit_depth(png, info);
  picture.colorType = png_get_color_type(png, info);
  if (picture.colorType == PNG_COLOR_TYPE_PALETTE) {
    failOfPng(png, "a picture with a palette is not expected");
  }
  picture.rowSize = png_get_rowbytes(png, info);
  picture.pixels.resize(picture.rowSize * picture.height);
  png_read_image(png, picture.rows().data());
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  return picture;
}
