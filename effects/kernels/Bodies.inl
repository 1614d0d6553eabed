// The bodies of the vector kernels, written once over the level's Backend. Included inside an anonymous namespace by
// each level's source, so that nothing here has linkage: the compiler may never hand one level's code to another.
//
// Backend: Vector, bytes, and the operations named in capitals below; lanes are 8, 16 or 32 bits wide as their names
// say.

using Vector = Backend::Vector;
using B = Backend;

constexpr std::size_t pixelBytes = 4;

// --- Point effects
// ---------------------------------------------------------------------------------------------------------------

// Replaces each vector of the first `bytes` bytes by step(vector); the last one may be a part of a vector.
template <typename Step>
VIXA_INLINE void ForEachVector(std::uint8_t* frame, std::size_t bytes, const Step& step) noexcept
{
    std::size_t at = 0;
    for (; at + B::bytes <= bytes; at += B::bytes)
        B::Store(frame + at, step(B::Load(frame + at)));
    if (at < bytes)
        B::StorePart(frame + at, step(B::LoadPart(frame + at, bytes - at)), bytes - at);
}

void Multiply(std::uint8_t* frame, std::size_t pixels, std::uint32_t multiplier) noexcept
{
    // A byte in the upper half of a word times the multiplier has byte x multiplier / 256 in the upper half of the
    // product. The fourth byte's multiplier is 0.
    const Vector factors = B::Pattern64((multiplier << 16) | multiplier, multiplier);
    const Vector zero = B::Zero();
    ForEachVector(frame, pixels * pixelBytes, [&](Vector v) {
        const Vector low = B::MultiplyHighU16(B::UnpackLow8(zero, v), factors);
        const Vector high = B::MultiplyHighU16(B::UnpackHigh8(zero, v), factors);
        return B::PackU8(low, high);
    });
}

void Invert(std::uint8_t* frame, std::size_t pixels, std::uint32_t pattern) noexcept
{
    const Vector ones = B::Pattern(pattern);
    ForEachVector(frame, pixels * pixelBytes, [&](Vector v) { return B::SubtractSaturatedU8(ones, v); });
}

void Add(std::uint8_t* frame, std::size_t pixels, std::uint32_t add, std::uint32_t subtract) noexcept
{
    const Vector up = B::Pattern(add), down = B::Pattern(subtract);
    ForEachVector(frame, pixels * pixelBytes,
                  [&](Vector v) { return B::SubtractSaturatedU8(B::AddSaturatedU8(v, up), down); });
}

// The hue range of a colour is a wedge of the colour cube between two planes through the grey axis. With the hue's
// definition multiplied out, a pixel lies inside when both integer products of (blue, green, red) with these normals
// are below 0: backward hues are bounded by the first, forward hues by the second (the other product is then below 0
// anyway). Each plane's weights sum to 0, so both products are 0 for grey alone, which counts as blue.
struct Wedge
{
    int first[3]; // weights of blue, green and red
    int second[3];
};
constexpr Wedge wedges[] = {
    {{-31, 42, -11}, {-25, -17, 42}}, // blue: 42 (G - R) < 31 (B - R), 42 (R - G) < 25 (B - G)
    {{-4, -3, 7}, {21, -13, -8}},     // green: 42 (R - B) < 18 (G - B), 42 (B - R) < 26 (G - R)
    {{21, -8, -13}, {-3, 7, -4}},     // red: 42 (B - G) < 26 (R - G), 42 (G - B) < 24 (R - B)
};

// Lightness from 60 to 200, given in the byte of the colour (the largest of the three there, when the hue matches).
template <int colour>
VIXA_INLINE Vector LightnessOf(Vector v) noexcept
{
    // The other two channels, moved to the colour's byte.
    Vector one, other;
    if constexpr (colour == 0) {
        one = B::template ShiftRight32<8>(v);
        other = B::template ShiftRight32<16>(v);
    } else if constexpr (colour == 1) {
        one = B::template ShiftLeft32<8>(v);
        other = B::template ShiftRight32<8>(v);
    } else {
        one = B::template ShiftLeft32<8>(v);
        other = B::template ShiftLeft32<16>(v);
    }
    // (sum x 255 + 255) / 510 is (sum + 1) / 2: the rounding average.
    return B::AverageU8(v, B::MinU8(one, other));
}

template <int colour, bool brighten>
VIXA_INLINE void FilterOneColor(std::uint8_t* frame, std::size_t pixels, std::uint32_t magnitude) noexcept
{
    constexpr Wedge wedge = wedges[colour];
    const auto first = B::MakeWeights(wedge.first[0], wedge.first[1], wedge.first[2]);
    const auto second = B::MakeWeights(wedge.second[0], wedge.second[1], wedge.second[2]);
    const Vector change = B::Pattern(magnitude << (8 * colour));
    // 60 moved to the lowest signed byte, so that one comparison finds both ends of 60 to 200.
    const Vector fromDarkest = B::Pattern(0x01010101u * (256 - 128 - 60));
    const Vector tooLight = B::Pattern(0x01010101u * (201 - 128 - 60));
    ForEachVector(frame, pixels * pixelBytes, [&](Vector v) {
        const Vector d1 = B::Product32(v, first), d2 = B::Product32(v, second);
        Vector inside = B::And(d1, d2); // the sign says
        if constexpr (colour == 0) {
            // Below 0 when both are, or when both are 0.
            inside = B::AndNot(B::Xor(d1, d2), B::Add32(B::Or(d1, d2), B::Pattern(0xFFFFFFFFu)));
        }
        const Vector light = B::AddI8(LightnessOf<colour>(v), fromDarkest);
        return B::template ChangeWhere<brighten>(v, change, inside, light, tooLight);
    });
}

template <int colour>
VIXA_INLINE void FilterEither(std::uint8_t* frame, std::size_t pixels, std::uint32_t magnitude, bool brighten) noexcept
{
    if (brighten)
        FilterOneColor<colour, true>(frame, pixels, magnitude);
    else
        FilterOneColor<colour, false>(frame, pixels, magnitude);
}

void FilterColor(std::uint8_t* frame, std::size_t pixels, int colour, std::uint32_t magnitude, bool brighten) noexcept
{
    if (colour == 0)
        FilterEither<0>(frame, pixels, magnitude, brighten);
    else if (colour == 1)
        FilterEither<1>(frame, pixels, magnitude, brighten);
    else
        FilterEither<2>(frame, pixels, magnitude, brighten);
}

// --- Convolutions
// ----------------------------------------------------------------------------------------------------------------
//
// Sums are kept in 16-bit lanes (the largest magnitude is 2550), blue and red apart from green and the fourth byte: a
// word's lower byte is its "even" half, the upper byte its "odd" half. One pixel to the left or right is then four
// bytes in memory, for pixels and for sums alike.
//
// Two rows are made at a time, in stretches of a row. First the columns: from the four rows around them, sums that look
// only up and down go into planes, small enough to stay in the nearest cache. Then the rows: planes are read one pixel
// to the left and to the right, and the results replace the frame. The frame's row above has been overwritten by then,
// so it comes from a copy. Results stay one vector behind the columns, whose planes alone know the pixels that the
// results replaced.

// One plane: element x of the stretch, for x from -2 vectors.
struct Planes
{
    std::uint8_t* base;

    VIXA_INLINE std::uint8_t* At(std::size_t plane, std::size_t x) const noexcept
    {
        return base + plane * planeBytes + x;
    }
    VIXA_INLINE Vector Left(std::size_t plane, std::size_t x) const noexcept
    {
        return B::Load(At(plane, x) - pixelBytes);
    }
    VIXA_INLINE Vector Here(std::size_t plane, std::size_t x) const noexcept { return B::Load(At(plane, x)); }
    VIXA_INLINE Vector Right(std::size_t plane, std::size_t x) const noexcept
    {
        return B::Load(At(plane, x) + pixelBytes);
    }
    VIXA_INLINE void Set(std::size_t plane, std::size_t x, Vector v) const noexcept { B::Store(At(plane, x), v); }
};

VIXA_INLINE Vector Pack(Vector even, Vector odd) noexcept
{
    return B::Interleave8(B::PackU8(even, odd));
}

// A positive sum divided, truncating; a negative one stays below 0, which packing clamps.
// 13108 / 65536, 21846 / 65536 and 7282 / 65536 give exact quotients by 5, 3 and 9 over all sums that occur.
template <int reciprocal>
VIXA_INLINE Vector Divide(Vector sum) noexcept
{
    return B::MultiplyHighI16(sum, B::Set16(reciprocal));
}

// Centre times a weight less the 3 x 3 sum, or the mean: the columns are sums of three.
template <int centre>
struct BoxForm
{
    static constexpr std::size_t planes = 4;

    static VIXA_INLINE void Columns(Planes to, std::size_t x, Vector a, Vector b, Vector c, Vector d) noexcept
    {
        const Vector even = B::Add16(B::Even(b), B::Even(c));
        const Vector odd = B::Add16(B::Odd(b), B::Odd(c));
        to.Set(0, x, B::Add16(even, B::Even(a)));
        to.Set(1, x, B::Add16(odd, B::Odd(a)));
        to.Set(2, x, B::Add16(even, B::Even(d)));
        to.Set(3, x, B::Add16(odd, B::Odd(d)));
    }

    template <int row>
    static VIXA_INLINE Vector Result(Planes from, std::size_t x, Vector middle) noexcept
    {
        constexpr std::size_t e = 2 * row, o = 2 * row + 1;
        if constexpr (centre == 0) {
            const Vector even = B::Add16(B::Add16(from.Left(e, x), from.Here(e, x)), from.Right(e, x));
            const Vector odd = B::Add16(B::Add16(from.Left(o, x), from.Here(o, x)), from.Right(o, x));
            // Eleven ninety-ninths are a ninth.
            return Pack(Divide<7282>(even), Divide<7282>(odd));
        } else {
            Vector even = B::template TimesEven<centre>(middle), odd = B::template TimesOdd<centre>(middle);
            even = B::Sub16(B::Sub16(B::Sub16(even, from.Here(e, x)), from.Left(e, x)), from.Right(e, x));
            odd = B::Sub16(B::Sub16(B::Sub16(odd, from.Here(o, x)), from.Left(o, x)), from.Right(o, x));
            return Pack(even, odd);
        }
    }
};

// The sums of two rows: p = row y + row y + 1. The emboss is p(below, x) + p(below, x + 1) - p(above, x) - p(above, x -
// 1), in which the middle pixel drops out.
struct EmbossForm
{
    static constexpr std::size_t planes = 6;

    static VIXA_INLINE void Columns(Planes to, std::size_t x, Vector a, Vector b, Vector c, Vector d) noexcept
    {
        const Vector evenB = B::Even(b), oddB = B::Odd(b), evenC = B::Even(c), oddC = B::Odd(c);
        to.Set(0, x, B::Add16(B::Even(a), evenB));
        to.Set(1, x, B::Add16(B::Odd(a), oddB));
        to.Set(2, x, B::Add16(evenB, evenC));
        to.Set(3, x, B::Add16(oddB, oddC));
        to.Set(4, x, B::Add16(evenC, B::Even(d)));
        to.Set(5, x, B::Add16(oddC, B::Odd(d)));
    }

    template <int row>
    static VIXA_INLINE Vector Result(Planes from, std::size_t x, Vector) noexcept
    {
        constexpr std::size_t e = 2 * row, o = 2 * row + 1;
        const Vector even =
            B::Sub16(B::Add16(from.Here(e + 2, x), from.Right(e + 2, x)), B::Add16(from.Here(e, x), from.Left(e, x)));
        const Vector odd =
            B::Sub16(B::Add16(from.Here(o + 2, x), from.Right(o + 2, x)), B::Add16(from.Here(o, x), from.Left(o, x)));
        // Clamping to -128 ... 127 and turning the sign bit is adding 128 and clamping to 0 ... 255.
        return B::Xor(B::Interleave8(B::PackI8(even, odd)), B::Pattern(0x80808080u));
    }
};

// Centre times a weight less the four corners, a third of it: the columns are sums of the rows above and below.
struct CornersForm
{
    static constexpr std::size_t planes = 4;

    static VIXA_INLINE void Columns(Planes to, std::size_t x, Vector a, Vector b, Vector c, Vector d) noexcept
    {
        to.Set(0, x, B::Add16(B::Even(a), B::Even(c)));
        to.Set(1, x, B::Add16(B::Odd(a), B::Odd(c)));
        to.Set(2, x, B::Add16(B::Even(b), B::Even(d)));
        to.Set(3, x, B::Add16(B::Odd(b), B::Odd(d)));
    }

    template <int row>
    static VIXA_INLINE Vector Result(Planes from, std::size_t x, Vector middle) noexcept
    {
        constexpr std::size_t e = 2 * row, o = 2 * row + 1;
        const Vector even = B::Sub16(B::Sub16(B::template TimesEven<7>(middle), from.Left(e, x)), from.Right(e, x));
        const Vector odd = B::Sub16(B::Sub16(B::template TimesOdd<7>(middle), from.Left(o, x)), from.Right(o, x));
        return Pack(Divide<21846>(even), Divide<21846>(odd));
    }
};

// The cross of five: `centre` times the middle pixel and `arm` (1 or -1) times its four neighbours. Planes 0 to 3 hold
// the vertical part, 4 to 7 the rows themselves.
template <int centre, int arm, int reciprocal>
struct CrossForm
{
    static constexpr std::size_t planes = 8;

    static VIXA_INLINE Vector Join(Vector sum, Vector neighbour) noexcept
    {
        return arm > 0 ? B::Add16(sum, neighbour) : B::Sub16(sum, neighbour);
    }

    static VIXA_INLINE void Columns(Planes to, std::size_t x, Vector a, Vector b, Vector c, Vector d) noexcept
    {
        const Vector evenB = B::Even(b), oddB = B::Odd(b), evenC = B::Even(c), oddC = B::Odd(c);
        to.Set(0, x, Join(Join(B::template TimesEven<centre>(b), B::Even(a)), evenC));
        to.Set(1, x, Join(Join(B::template TimesOdd<centre>(b), B::Odd(a)), oddC));
        to.Set(2, x, Join(Join(B::template TimesEven<centre>(c), evenB), B::Even(d)));
        to.Set(3, x, Join(Join(B::template TimesOdd<centre>(c), oddB), B::Odd(d)));
        to.Set(4, x, evenB);
        to.Set(5, x, oddB);
        to.Set(6, x, evenC);
        to.Set(7, x, oddC);
    }

    template <int row>
    static VIXA_INLINE Vector Result(Planes from, std::size_t x, Vector) noexcept
    {
        constexpr std::size_t e = 2 * row, o = 2 * row + 1;
        const Vector even = Join(Join(from.Here(e, x), from.Left(e + 4, x)), from.Right(e + 4, x));
        const Vector odd = Join(Join(from.Here(o, x), from.Left(o + 4, x)), from.Right(o + 4, x));
        if constexpr (reciprocal == 0)
            return Pack(even, odd);
        else
            return Pack(Divide<reciprocal>(even), Divide<reciprocal>(odd));
    }
};

// The rows of one step: a from the copy, b and c (which get results) and d from the frame.
struct FourRows
{
    std::uint8_t* saved;
    std::uint8_t* b;
    std::uint8_t* c;
    const std::uint8_t* d;
};

VIXA_INLINE void ClearPixel(std::uint8_t* pixel) noexcept
{
    std::memset(pixel, 0, pixelBytes);
}

template <typename Form>
VIXA_INLINE void MakeTwoRows(FourRows rows, std::size_t rowBytes, std::uint8_t* planes) noexcept
{
    constexpr std::size_t lead =
        2 * B::bytes;     // where a stretch starts in its planes; two vectors of the one before stand there
    std::size_t done = 0; // results so far, in bytes of the row
    std::size_t start = 0;
    while (true) {
        const std::size_t end = rowBytes - start > stretchBytes ? start + stretchBytes : rowBytes;
        const Planes to{planes + lead - start};
        std::size_t x = start;
        for (; x + B::bytes <= end; x += B::bytes) {
            const Vector c = B::Load(rows.c + x);
            Form::Columns(to, x, B::Load(rows.saved + x), B::Load(rows.b + x), c, B::Load(rows.d + x));
            B::Store(rows.saved + x, c);
        }
        if (x < end) {
            const std::size_t part = end - x;
            const Vector c = B::LoadPart(rows.c + x, part);
            Form::Columns(to, x, B::Load(rows.saved + x), B::LoadPart(rows.b + x, part), c,
                          B::LoadPart(rows.d + x, part));
            B::Store(rows.saved + x, c);
        }

        const bool last = end == rowBytes;
        const std::size_t until = last ? rowBytes : end - B::bytes;
        for (x = done; x + B::bytes <= until; x += B::bytes) {
            const Vector first = Form::template Result<0>(to, x, B::Load(rows.b + x));
            const Vector second = Form::template Result<1>(to, x, B::Load(rows.c + x));
            B::Store(rows.b + x, first);
            B::Store(rows.c + x, second);
        }
        if (last) {
            if (x < until) {
                const std::size_t part = until - x;
                const Vector first = Form::template Result<0>(to, x, B::LoadPart(rows.b + x, part));
                const Vector second = Form::template Result<1>(to, x, B::LoadPart(rows.c + x, part));
                B::StorePart(rows.b + x, first, part);
                B::StorePart(rows.c + x, second, part);
            }
            break;
        }
        done = until;
        for (std::size_t plane = 0; plane < Form::planes; ++plane) {
            const Vector one = to.Here(plane, end - 2 * B::bytes), other = to.Here(plane, end - B::bytes);
            const Planes next{planes + lead - end};
            next.Set(plane, end - 2 * B::bytes, one);
            next.Set(plane, end - B::bytes, other);
        }
        start = end;
    }
    ClearPixel(rows.b);
    ClearPixel(rows.b + rowBytes - pixelBytes);
    ClearPixel(rows.c);
    ClearPixel(rows.c + rowBytes - pixelBytes);
}

VIXA_INLINE std::uint8_t* Aligned(std::uint8_t* at) noexcept
{
    return at + (widestVector - reinterpret_cast<std::uintptr_t>(at) % widestVector) % widestVector;
}

template <typename Form>
void ConvolveForm(std::uint8_t* frame, std::size_t rowBytes, std::size_t height, std::uint8_t* scratch) noexcept
{
    std::uint8_t* const saved = Aligned(scratch);
    std::uint8_t* const planes = Aligned(saved + rowBytes + B::bytes);
    std::memcpy(saved, frame, rowBytes);
    std::memset(frame, 0, rowBytes);
    for (std::size_t y = 1; y + 1 < height; y += 2) {
        std::uint8_t* const b = frame + y * rowBytes;
        std::uint8_t* const c = b + rowBytes;
        // With one inner row left, the second result falls on the last row, which is cleared below; any row serves as
        // the one under it.
        const std::uint8_t* const d = y + 2 < height ? c + rowBytes : c;
        MakeTwoRows<Form>({saved, b, c, d}, rowBytes, planes);
    }
    std::memset(frame + (height - 1) * rowBytes, 0, rowBytes);
}

// Bytes with the sign bit turned differ by at most -128 or 127 once saturated: with the bit turned back, the difference
// plus 128, clamped.
VIXA_INLINE Vector DifferenceOf(Vector minuend, Vector subtrahend) noexcept
{
    const Vector half = B::Pattern(0x80808080u);
    return B::Xor(B::SubtractSaturatedI8(B::Xor(minuend, half), B::Xor(subtrahend, half)), half);
}

// Each byte less the byte `back` bytes before it, plus 128, clamped. Walked from the end of the frame to its start,
// what is still to be read has not been written yet, and no copy is needed.
void Shift(std::uint8_t* frame, std::size_t rowBytes, std::size_t height, std::size_t back) noexcept
{
    std::memset(frame + (height - 1) * rowBytes, 0, rowBytes);
    // Vectors run on across the borders between rows: the last pixel of one row and the first of the next are cleared
    // once nothing needs them any more.
    std::size_t end = (height - 1) * rowBytes;
    std::size_t border = end;
    for (std::size_t y = height - 2; y > 0; --y) {
        const std::size_t row = y * rowBytes + pixelBytes;
        for (; end >= row + B::bytes; end -= B::bytes) {
            std::uint8_t* const at = frame + end - B::bytes;
            B::Store(at, DifferenceOf(B::Load(at), B::Load(at - back)));
        }
        if (y == 1 && end > row) {
            std::uint8_t* const at = frame + row;
            B::StorePart(at, DifferenceOf(B::LoadPart(at, end - row), B::LoadPart(at - back, end - row)), end - row);
            end = row;
        }
        for (; border >= end + pixelBytes; border -= rowBytes)
            std::memset(frame + border - pixelBytes, 0, 2 * pixelBytes);
    }
    std::memset(frame, 0, rowBytes + pixelBytes);
}

void Convolve(std::uint8_t* frame, std::size_t width, std::size_t height, ConvolutionForm form,
              std::uint8_t* scratch) noexcept
{
    const std::size_t rowBytes = width * pixelBytes;
    switch (form) {
    case ConvolutionForm::DetectEdges:
        return ConvolveForm<BoxForm<9>>(frame, rowBytes, height, scratch);
    case ConvolutionForm::Emboss:
        return ConvolveForm<EmbossForm>(frame, rowBytes, height, scratch);
    case ConvolutionForm::EnhanceDetails:
        return ConvolveForm<CrossForm<9, -1, 13108>>(frame, rowBytes, height, scratch);
    case ConvolutionForm::EnhanceEdges:
        return ConvolveForm<BoxForm<10>>(frame, rowBytes, height, scratch);
    case ConvolutionForm::EnhanceFocus:
        return ConvolveForm<CornersForm>(frame, rowBytes, height, scratch);
    case ConvolutionForm::LightEdges:
        return ConvolveForm<CrossForm<-4, 1, 0>>(frame, rowBytes, height, scratch);
    case ConvolutionForm::Soften:
        return ConvolveForm<BoxForm<0>>(frame, rowBytes, height, scratch);
    case ConvolutionForm::ShiftBoth:
        return Shift(frame, rowBytes, height, rowBytes + pixelBytes);
    case ConvolutionForm::ShiftVertical:
        return Shift(frame, rowBytes, height, rowBytes);
    case ConvolutionForm::ShiftHorizontal:
        return Shift(frame, rowBytes, height, pixelBytes);
    }
}
