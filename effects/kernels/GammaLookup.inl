// Gamma correction without byte permutations over a whole table: one table per channel whose entries stand where they
// belong in the pixel, so that three look-ups and three "or"s make a pixel. Included like PointBodies.inl.

void GammaLookup(std::uint8_t* frame, std::size_t pixels, const std::uint8_t* table) noexcept
{
    std::uint32_t blue[256], green[256], red[256];
    for (std::size_t i = 0; i < 256; ++i) {
        blue[i] = table[i];
        green[i] = std::uint32_t{table[i]} << 8;
        red[i] = std::uint32_t{table[i]} << 16;
    }
    for (std::uint8_t* const end = frame + pixels * pixelBytes; frame != end; frame += pixelBytes) {
        std::uint32_t pixel;
        std::memcpy(&pixel, frame, pixelBytes);
        pixel = (pixel & 0xFF000000u) | blue[pixel & 0xFF] | green[pixel >> 8 & 0xFF] | red[pixel >> 16 & 0xFF];
        std::memcpy(frame, &pixel, pixelBytes);
    }
}
