#include "tools/make-pages/Picture.h"

#include <png.h>

#include <fstream>
#include <stdexcept>

namespace vixa::pages {

namespace {

[[noreturn]] void Fail(const std::filesystem::path& file, const char* why)
{
    throw std::runtime_error(file.string() + ": " + why);
}

// Rows of blue, green and red.
bool Encode(const Picture& picture, const std::vector<std::uint8_t>& bytes, int filters,
            std::vector<std::uint8_t>& encoded)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    // Errors come back here; nothing that needs a destructor is made below.
    const bool done = info && !setjmp(png_jmpbuf(png));
    if (done) {
        png_set_write_fn(
            png, &encoded,
            [](png_structp writer, png_bytep data, png_size_t size) {
                auto& file = *static_cast<std::vector<std::uint8_t>*>(png_get_io_ptr(writer));
                file.insert(file.end(), data, data + size);
            },
            nullptr);
        png_set_compression_level(png, 9);
        png_set_filter(png, PNG_FILTER_TYPE_BASE, filters);
        png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height), 8,
                     PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        png_set_bgr(png);
        for (std::size_t y = 0; y < picture.height; ++y)
            png_write_row(png, &bytes[y * picture.width * 3]);
        png_write_end(png, info);
    }
    png_destroy_write_struct(&png, &info);
    return done;
}

} // namespace

Picture ReadPng(const std::filesystem::path& file)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, file.c_str()))
        Fail(file, image.message);
    image.format = PNG_FORMAT_BGRA;
    Picture picture = {image.width, image.height, {}};
    picture.pixels.resize(std::size_t{image.width} * image.height);
    if (!png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr))
        Fail(file, image.message);
    return picture;
}

void WritePng(const std::filesystem::path& file, const Picture& picture)
{
    std::vector<std::uint8_t> bytes; // without alpha
    bytes.reserve(picture.pixels.size() * 3);
    for (const std::uint32_t pixel : picture.pixels)
        for (int channel = 0; channel < 3; ++channel)
            bytes.push_back(static_cast<std::uint8_t>(pixel >> (8 * channel)));
    // Smooth pictures become smaller with filters, those of noise without.
    std::vector<std::uint8_t> best;
    for (const int filters : {PNG_FILTER_NONE, PNG_ALL_FILTERS}) {
        std::vector<std::uint8_t> encoded;
        if (!Encode(picture, bytes, filters, encoded))
            Fail(file, "can't be made a PNG");
        if (best.empty() || encoded.size() < best.size())
            best = std::move(encoded);
    }
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(best.data()), static_cast<std::streamsize>(best.size()));
    if (!stream.flush())
        Fail(file, "can't be written");
}

} // namespace vixa::pages
