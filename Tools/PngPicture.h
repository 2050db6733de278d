#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include <png.h>

// What the tools that read and write PNG share. An error ends the program, with its name.
struct PngPicture {
  png_uint_32 width = 0;
  png_uint_32 height = 0;
  int bitDepth = 0;
  int colorType = 0;
  std::size_t rowSize = 0;  // bytes
  std::vector<png_byte> pixels;

  std::vector<png_bytep> rows();
};

// The functions that libpng calls.
[[noreturn]] void failOfPng(png_structp png, png_const_charp message);
void ignoreWarningOfPng(png_structp png, png_const_charp message);

// A picture without a palette.
PngPicture readPng(std::FILE* file);
