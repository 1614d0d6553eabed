// The bodies of the convolutions, written once over the level's Backend. Included after PointBodies.inl, inside the
// same anonymous namespace.
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

    template <std::size_t row>
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

    template <std::size_t row>
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

    template <std::size_t row>
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

    template <std::size_t row>
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
VIXA_INLINE void MakeTwoRows(FourRows rows, std::size_t rowBytes, Planes planes) noexcept
{
    constexpr std::size_t lead =
        2 * B::bytes;     // where a stretch starts in its planes; two vectors of the one before stand there
    std::size_t done = 0; // results so far, in bytes of the row
    std::size_t start = 0;
    while (true) {
        const std::size_t end = rowBytes - start > stretchBytes ? start + stretchBytes : rowBytes;
        const Planes to{planes.base + lead - start};
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
            const Planes next{planes.base + lead - end};
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
std::size_t ConvolveForm(std::uint8_t* frame, std::size_t rowBytes, std::size_t height, std::uint8_t* scratch,
                         std::size_t done, std::size_t ready) noexcept
{
    std::uint8_t* const saved = Aligned(scratch);
    std::uint8_t* const planes = Aligned(saved + rowBytes + B::bytes);
    std::size_t y = done;
    if (y == 0) {
        std::memcpy(saved, frame, rowBytes);
        std::memset(frame, 0, rowBytes);
        y = 1;
    }
    for (; y + 2 < ready; y += 2) {
        std::uint8_t* const b = frame + y * rowBytes;
        MakeTwoRows<Form>({saved, b, b + rowBytes, b + 2 * rowBytes}, rowBytes, {planes});
    }
    if (ready < height)
        return y;
    if (y + 1 < height) {
        // One inner row is left: the second result falls on the last row, which is cleared below, and any row serves as
        // the one under it.
        std::uint8_t* const b = frame + y * rowBytes;
        MakeTwoRows<Form>({saved, b, b + rowBytes, b + rowBytes}, rowBytes, {planes});
    }
    std::memset(frame + (height - 1) * rowBytes, 0, rowBytes);
    return height;
}

// Bytes with the sign bit turned differ by at most -128 or 127 once saturated: with the bit turned back, the difference
// plus 128, clamped.
VIXA_INLINE Vector DifferenceOf(Vector minuend, Vector subtrahend) noexcept
{
    const Vector half = B::Pattern(0x80808080u);
    return B::Xor(B::SubtractSaturatedI8(B::Xor(minuend, half), B::Xor(subtrahend, half)), half);
}

// Each byte of a row less the one `left` bytes before it in `from`, plus 128, clamped; the row's first and last pixels
// become 0. Walked from the end of the row to its start, so `from` may be the row itself.
VIXA_INLINE void ShiftRow(std::uint8_t* row, const std::uint8_t* from, std::size_t left, std::size_t rowBytes) noexcept
{
    std::uint8_t* const first = row + pixelBytes;
    std::uint8_t* at = row + rowBytes;
    const std::uint8_t* subtrahend = from + rowBytes - left;
    if (rowBytes >= pixelBytes + B::bytes) {
        // What is left at the start is less than a vector. It is made as a whole one while nothing has been replaced.
        const Vector head = DifferenceOf(B::Load(first), B::Load(from + (pixelBytes - left)));
        while (at >= first + B::bytes) {
            at -= B::bytes;
            subtrahend -= B::bytes;
            B::Store(at, DifferenceOf(B::Load(at), B::Load(subtrahend)));
        }
        B::Store(first, head);
    } else if (rowBytes > pixelBytes) {
        const std::size_t part = rowBytes - pixelBytes;
        B::StorePart(first, DifferenceOf(B::LoadPart(first, part), B::LoadPart(from + (pixelBytes - left), part)),
                     part);
    }
    ClearPixel(row);
    ClearPixel(row + rowBytes - pixelBytes);
}

// Each byte less one of the row above or of its own, `left` bytes to the left. Rows are made from the last one that is
// ready upwards: what is still to be read has not been written yet. The copies serve the rows that come with the next
// call.
std::size_t Shift(std::uint8_t* frame, std::size_t rowBytes, std::size_t height, bool above, std::size_t left,
                  std::uint8_t* scratch, std::size_t done, std::size_t ready) noexcept
{
    std::uint8_t* const saved = scratch;
    std::uint8_t* const next = scratch + rowBytes;
    std::size_t first = done;
    if (first == 0) {
        std::memcpy(saved, frame, rowBytes);
        std::memset(frame, 0, rowBytes);
        first = 1;
    }
    const bool last = ready == height;
    const std::size_t end = last ? height - 1 : ready;
    if (end > first) {
        if (!last)
            std::memcpy(next, frame + (end - 1) * rowBytes, rowBytes);
        for (std::size_t y = end; y-- > first;) {
            std::uint8_t* const row = frame + y * rowBytes;
            const std::uint8_t* const from = !above ? row : y > first ? row - rowBytes : saved;
            ShiftRow(row, from, left, rowBytes);
        }
        if (!last)
            std::memcpy(saved, next, rowBytes);
    }
    if (last)
        std::memset(frame + (height - 1) * rowBytes, 0, rowBytes);
    return last ? height : end;
}

std::size_t Convolve(std::uint8_t* frame, std::size_t width, std::size_t height, ConvolutionKind kind,
                     std::uint8_t* scratch, std::size_t done, std::size_t ready) noexcept
{
    const std::size_t rowBytes = width * pixelBytes;
    switch (kind) {
    case ConvolutionKind::DetectEdges:
        return ConvolveForm<BoxForm<9>>(frame, rowBytes, height, scratch, done, ready);
    case ConvolutionKind::Emboss:
        return ConvolveForm<EmbossForm>(frame, rowBytes, height, scratch, done, ready);
    case ConvolutionKind::EnhanceDetails:
        return ConvolveForm<CrossForm<9, -1, 13108>>(frame, rowBytes, height, scratch, done, ready);
    case ConvolutionKind::EnhanceEdges:
        return ConvolveForm<BoxForm<10>>(frame, rowBytes, height, scratch, done, ready);
    case ConvolutionKind::EnhanceFocus:
        return ConvolveForm<CornersForm>(frame, rowBytes, height, scratch, done, ready);
    case ConvolutionKind::LightEdges:
        return ConvolveForm<CrossForm<-4, 1, 0>>(frame, rowBytes, height, scratch, done, ready);
    case ConvolutionKind::Soften:
        return ConvolveForm<BoxForm<0>>(frame, rowBytes, height, scratch, done, ready);
    case ConvolutionKind::ShiftEdges:
        return Shift(frame, rowBytes, height, true, pixelBytes, scratch, done, ready);
    case ConvolutionKind::ShiftEdgesVertical:
        return Shift(frame, rowBytes, height, true, 0, scratch, done, ready);
    case ConvolutionKind::ShiftEdgesHorizontal:
        return Shift(frame, rowBytes, height, false, pixelBytes, scratch, done, ready);
    }
    return ready;
}
