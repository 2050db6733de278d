// Reads a PNG from standard input and writes it to standard output with the Sub filter on every
// row. Sub decodes much faster than the mixed filters of most renderers, and decoding pictures is
// the main cost of starting the program.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <png.h>

namespace {

[[noreturn]] void fail(png_structp, png_const_charp message) {
  std::fprintf(stderr, "SubFilterPng: %s\n", message);
  std::exit(EXIT_FAILURE);
}

void ignoreWarning(png_structp, png_const_charp) {}

struct Picture {
  png_uint_32 width = 0;
  png_uint_32 height = 0;
  int bitDepth = 0;
  int colorType = 0;
  std::size_t rowSize = 0;
  std::vector<png_byte> pixels;

  std::vector<png_bytep> rows() {
    std::vector<png_bytep> result(height);
    for (png_uint_32 y = 0; y < height; ++y) {
      result[y] = pixels.data() + rowSize * y;
    }
    return result;
  }
};

Picture read(std::FILE* file) {
  Picture picture;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, ignoreWarning);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_read_info(png, info);
  picture.width = png_get_image_width(png, info);
  picture.height = png_get_image_height(png, info);
  picture.bitDepth = png_get_bit_depth(png, info);
  picture.colorType = png_get_color_type(png, info);
  if (picture.colorType == PNG_COLOR_TYPE_PALETTE) {
    fail(png, "a picture with a palette is not expected");
  }
  picture.rowSize = png_get_rowbytes(png, info);
  picture.pixels.resize(picture.rowSize * picture.height);
  png_read_image(png, picture.rows().data());
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  return picture;
}

void write(std::FILE* file, Picture& picture) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, ignoreWarning);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_IHDR(png, info, picture.width, picture.height, picture.bitDepth, picture.colorType,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
  png_set_compression_level(png, 9);
  png_write_info(png, info);
  png_write_image(png, picture.rows().data());
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
}

}  // namespace

int main() {
  Picture picture = read(stdin);
  write(stdout, picture);
  return std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
