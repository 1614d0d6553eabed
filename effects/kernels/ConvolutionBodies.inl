// The bodies of the convolutions, written once over the level's Backend. Included after PointBodies.inl, inside the
// same anonymous namespace.
//
// Bytes become sums of 16 bits (the largest magnitude is 2550) by interleaving two vectors and multiplying pairs; a
// pixel's neighbour to the left or to the right is a load four bytes away.
//
// Two rows are made at a time, or twice two, and the results replace the frame. What they need of the rows above has
// been worked out before: for each vector one or two sums of a row, kept until the rows under it have been read. So a
// step looks at three rows only: an upper and a middle one, which get the results, and the lower one.

// The bytes of one vector as words, or sums of them.
struct Words
{
    Vector low, high;
};

VIXA_INLINE Words Widen(Vector v) noexcept
{
    return {B::UnpackLow8(v, B::Zero()), B::UnpackHigh8(v, B::Zero())};
}

// The bytes of `a` times one weight and those of `b` times the other, both -128 to 127.
template <int weightA, int weightB>
VIXA_INLINE Words Weigh(Vector a, Vector b) noexcept
{
    return {B::WeighLow<weightA, weightB>(a, b), B::WeighHigh<weightA, weightB>(a, b)};
}

VIXA_INLINE Words operator+(Words a, Words b) noexcept
{
    return {B::Add16(a.low, b.low), B::Add16(a.high, b.high)};
}

VIXA_INLINE Words operator-(Words a, Words b) noexcept
{
    return {B::Sub16(a.low, b.low), B::Sub16(a.high, b.high)};
}

// A positive sum divided, truncating; a negative one stays below 0, which packing clamps.
// 13108 / 65536, 21846 / 65536 and 7282 / 65536 give exact quotients by 5, 3 and 9 over all sums that occur.
template <int reciprocal>
VIXA_INLINE Words Divide(Words sum) noexcept
{
    return {B::MultiplyHighI16(sum.low, B::Set16(reciprocal)), B::MultiplyHighI16(sum.high, B::Set16(reciprocal))};
}

VIXA_INLINE Vector Pack(Words sum) noexcept
{
    return B::PackU8(sum.low, sum.high);
}

// One vector of a row and the pixels to both sides.
struct Neighbours
{
    Vector left, here, right;
};

// Two rows of a step at one vector. Pixels to the left must be given where results have replaced the first of them.
struct Place
{
    std::uint8_t* upper;
    std::uint8_t* middle;
    const std::uint8_t* lower;
    Vector middleLeft;
    const Vector* lowerLeft; // null: as in memory
    Words* kept;

    VIXA_INLINE Vector Upper() const noexcept { return B::Load(upper); }
    VIXA_INLINE Neighbours Middle() const noexcept
    {
        return {middleLeft, B::Load(middle), B::Load(middle + pixelBytes)};
    }
    VIXA_INLINE Neighbours Lower() const noexcept
    {
        return {lowerLeft ? *lowerLeft : B::Load(lower - pixelBytes), B::Load(lower), B::Load(lower + pixelBytes)};
    }
    VIXA_INLINE void SetUpper(Vector result) const noexcept { B::Store(upper, result); }
    VIXA_INLINE void SetMiddle(Vector result) const noexcept { B::Store(middle, result); }
};

// Eight registers do not hold all that a step of the longest form reads. With more it is faster to read before writing.
constexpr bool manyRegisters = B::registers > 8;

// Each form has `sums`, how many it keeps for each vector, and `fourRowsFrom`: with so many registers four rows at a
// time are faster than two, which saves half of what the sums cost.
constexpr int never = 1000;

// Centre times a weight less the 3 x 3 sum, or the mean. Kept: the sums of three pixels side by side, in the row above
// the upper one and in the upper one.
template <int centre>
struct BoxForm
{
    static constexpr std::size_t sums = 2;
    static constexpr int fourRowsFrom = centre == 0 ? 16 : 32;

    static VIXA_INLINE Words Sum(Neighbours row) noexcept { return Weigh<1, 1>(row.left, row.right) + Widen(row.here); }

    static VIXA_INLINE Vector Result(Vector pixels, Words sum) noexcept
    {
        if constexpr (centre == 0)
            return Pack(Divide<7282>(sum)); // eleven ninety-ninths are a ninth
        else
            return Pack(Weigh<centre, 0>(pixels, B::Zero()) - sum);
    }

    static VIXA_INLINE void Step(Place at) noexcept
    {
        Neighbours lower;
        if constexpr (manyRegisters)
            lower = at.Lower();
        const Words middleSum = Sum(at.Middle()), both = at.kept[1] + middleSum;
        at.SetUpper(Result(at.Upper(), at.kept[0] + both));
        at.kept[0] = middleSum;
        if constexpr (!manyRegisters)
            lower = at.Lower();
        const Words lowerSum = Sum(lower);
        at.kept[1] = lowerSum;
        at.SetMiddle(Result(at.Middle().here, both + lowerSum));
    }
};

// With l the sum of a pixel and the one to its left, and r of a pixel and the one to its right: r below + r - l - l
// above. Kept: all but the first of them for the upper row, and that row's l.
struct EmbossForm
{
    static constexpr std::size_t sums = 2;
    static constexpr int fourRowsFrom = 32;

    static VIXA_INLINE Vector Result(Words sum) noexcept
    {
        // Clamping to -128 ... 127 and turning the sign bit is adding 128 and clamping to 0 ... 255.
        return B::Xor(B::PackI8(sum.low, sum.high), B::Pattern(0x80808080u));
    }

    static VIXA_INLINE void Step(Place at) noexcept
    {
        const Neighbours middle = at.Middle(), lower = at.Lower();
        const Words middleRight = Weigh<1, 1>(middle.here, middle.right);
        at.SetUpper(Result(at.kept[0] + middleRight));
        const Words middleLeft = Weigh<1, 1>(middle.left, middle.here);
        const Words rest = middleRight - middleLeft - at.kept[1];
        const Words lowerRight = Weigh<1, 1>(lower.here, lower.right);
        at.SetMiddle(Result(rest + lowerRight));
        const Words lowerLeft = Weigh<1, 1>(lower.left, lower.here);
        at.kept[0] = lowerRight - lowerLeft - middleLeft;
        at.kept[1] = lowerLeft;
    }
};

// Centre times a weight less the four corners, a third of it. Kept: the sums of the neighbours to the left and to the
// right, in the row above the upper one and in the upper one.
struct CornersForm
{
    static constexpr std::size_t sums = 2;
    static constexpr int fourRowsFrom = 32;

    static VIXA_INLINE Vector Result(Vector pixels, Words corners) noexcept
    {
        return Pack(Divide<21846>(Weigh<7, 0>(pixels, B::Zero()) - corners));
    }

    static VIXA_INLINE void Step(Place at) noexcept
    {
        Neighbours lower;
        if constexpr (manyRegisters)
            lower = at.Lower();
        const Words middleSum = Weigh<1, 1>(at.middleLeft, at.Middle().right);
        at.SetUpper(Result(at.Upper(), at.kept[0] + middleSum));
        at.kept[0] = middleSum;
        if constexpr (!manyRegisters)
            lower = at.Lower();
        const Words lowerSum = Weigh<1, 1>(lower.left, lower.right);
        at.SetMiddle(Result(at.Middle().here, at.kept[1] + lowerSum));
        at.kept[1] = lowerSum;
    }
};

// The cross of five: `centre` times the middle pixel and `arm` (1 or -1) times its four neighbours. Kept: all but the
// pixel below, for the upper row.
template <int centre, int arm, int reciprocal>
struct CrossForm
{
    static constexpr std::size_t sums = 1;
    static constexpr int fourRowsFrom = never;

    static VIXA_INLINE Words Sum(Vector above, Neighbours row) noexcept
    {
        return Weigh<centre, arm>(row.here, above) + Weigh<arm, arm>(row.left, row.right);
    }

    static VIXA_INLINE Vector Result(Words sum, Vector below) noexcept
    {
        const Words all = arm > 0 ? sum + Widen(below) : sum - Widen(below);
        if constexpr (reciprocal == 0)
            return Pack(all);
        else
            return Pack(Divide<reciprocal>(all));
    }

    static VIXA_INLINE void Step(Place at) noexcept
    {
        const Vector upper = at.Upper();
        const Neighbours middle = at.Middle(), lower = at.Lower();
        at.SetUpper(Result(at.kept[0], middle.here));
        at.SetMiddle(Result(Sum(upper, middle), lower.here));
        at.kept[0] = Sum(middle.here, lower);
    }
};

VIXA_INLINE void ClearEnds(std::uint8_t* row, std::size_t rowBytes) noexcept
{
    std::memset(row, 0, pixelBytes);
    std::memset(row + rowBytes - pixelBytes, 0, pixelBytes);
}

// Makes the rows from `rows[0]` on, two for each pair, given the row under them, which stays. There is memory before
// all but the first, a pixel of any value, and less than a vector behind all but the last, if that is longer than a
// vector.
template <typename Form, std::size_t pairs>
VIXA_INLINE void MakeRows(std::uint8_t* const (&rows)[2 * pairs + 1], std::size_t rowBytes, std::uint8_t* sums) noexcept
{
    constexpr std::size_t made = 2 * pairs;
    Vector left[made];
#pragma GCC unroll 8
    for (std::size_t i = 1; i < made; ++i)
        left[i] = rowBytes < B::bytes ? B::LoadPart(rows[i] - pixelBytes, rowBytes) : B::Load(rows[i] - pixelBytes);
    const auto step = [&](std::uint8_t* const* at, std::size_t x, std::uint8_t* kept) VIXA_INLINE_LAMBDA {
        Words sumsHere[Form::sums];
#pragma GCC unroll 8
        for (std::size_t i = 0; i < Form::sums; ++i)
            sumsHere[i] = {B::Load(kept + 2 * i * B::bytes), B::Load(kept + (2 * i + 1) * B::bytes)};
#pragma GCC unroll 8
        for (std::size_t i = 0; i < made; i += 2)
            Form::Step({at[i] + x, at[i + 1] + x, at[i + 2] + x, left[i + 1], i + 2 < made ? &left[i + 2] : nullptr,
                        sumsHere});
#pragma GCC unroll 8
        for (std::size_t i = 0; i < Form::sums; ++i) {
            B::Store(kept + 2 * i * B::bytes, sumsHere[i].low);
            B::Store(kept + (2 * i + 1) * B::bytes, sumsHere[i].high);
        }
    };
    std::size_t x = 0;
    for (; x + B::bytes < rowBytes; x += B::bytes) {
        // The next step's rows come from memory, and nothing asks for them in time: processors do that by themselves
        // for rows that are read one after the other, but hardly for so many at once.
        for (std::size_t line = 0; line < made * B::bytes; line += cacheLine)
            _mm_prefetch(reinterpret_cast<const char*>(rows[made] + rowBytes + made * x + line), _MM_HINT_T1);
        Vector nextLeft[made];
#pragma GCC unroll 8
        for (std::size_t i = 1; i < made; ++i)
            nextLeft[i] = B::Load(rows[i] + x + B::bytes - pixelBytes);
        step(rows, x, sums + 4 * x);
#pragma GCC unroll 8
        for (std::size_t i = 1; i < made; ++i)
            left[i] = nextLeft[i];
    }

    // The last vector goes through copies, because what is behind the row must not be touched.
    constexpr std::size_t room = pixelBytes + B::bytes + pixelBytes;
    std::uint8_t copies[made + 1][room] = {};
    std::uint8_t* ends[made + 1];
    const std::size_t part = rowBytes - x;
#pragma GCC unroll 8
    for (std::size_t i = 0; i <= made; ++i) {
        ends[i] = copies[i] + pixelBytes;
        std::memcpy(ends[i], rows[i] + x, part);
    }
    std::memcpy(copies[made], rows[made] + x - pixelBytes, pixelBytes);
    step(ends, 0, sums + 4 * x);
#pragma GCC unroll 8
    for (std::size_t i = 0; i < made; ++i) {
        std::memcpy(rows[i] + x, ends[i], part);
        ClearEnds(rows[i], rowBytes);
    }
}

VIXA_INLINE std::uint8_t* Aligned(std::uint8_t* at) noexcept
{
    return at + (widestVector - reinterpret_cast<std::uintptr_t>(at) % widestVector) % widestVector;
}

template <typename Form>
std::size_t ConvolveForm(std::uint8_t* frame, std::size_t rowBytes, std::size_t height, std::uint8_t* scratch,
                         std::size_t done, std::size_t ready) noexcept
{
    std::uint8_t* const sums = Aligned(scratch);
    std::uint8_t* const copy = sums + 4 * (rowBytes + widestVector);
    std::size_t y = done;
    if (y == 0) {
        if (ready < 2)
            return 0;
        // A step for the sums of the first two rows: its results mean nothing.
        std::memcpy(copy, frame, rowBytes);
        MakeRows<Form, 1>({frame, copy, frame + rowBytes}, rowBytes, sums);
        std::memset(frame, 0, rowBytes);
        y = 1;
    }
    std::uint8_t* at = frame + y * rowBytes;
    if constexpr (B::registers >= Form::fourRowsFrom) {
        for (; y + 4 < ready; y += 4, at += 4 * rowBytes)
            MakeRows<Form, 2>({at, at + rowBytes, at + 2 * rowBytes, at + 3 * rowBytes, at + 4 * rowBytes}, rowBytes,
                              sums);
    }
    for (; y + 2 < ready; y += 2, at += 2 * rowBytes)
        MakeRows<Form, 1>({at, at + rowBytes, at + 2 * rowBytes}, rowBytes, sums);
    if (ready < height)
        return y;
    if (y + 1 < height) {
        // One inner row is left: the second result falls on a copy of the last row, and any row serves as the one under
        // it.
        std::uint8_t* const upper = frame + y * rowBytes;
        std::memcpy(copy, upper + rowBytes, rowBytes);
        MakeRows<Form, 1>({upper, copy, copy}, rowBytes, sums);
    }
    std::memset(frame + (height - 1) * rowBytes, 0, rowBytes);
    return height;
}

// Walking backwards over more than this, the rows come from memory, and processors hardly fetch them by themselves:
// asked for so many bytes ahead they are there in time. Less lies in a large cache, where asking costs more than it
// saves.
constexpr std::size_t prefetchFrom = std::size_t{16} << 20, prefetchDistance = std::size_t{24} << 10;

// Bytes with the sign bit turned differ by at most -128 or 127 once saturated: with the bit turned back, the difference
// plus 128, clamped.
VIXA_INLINE Vector DifferenceOf(Vector minuend, Vector subtrahend) noexcept
{
    const Vector half = B::Pattern(0x80808080u);
    return B::Xor(B::SubtractSaturatedI8(B::Xor(minuend, half), B::Xor(subtrahend, half)), half);
}

// Each byte of a row less the one `left` bytes before it in `from`, plus 128, clamped; the row's first and last pixels
// become 0. Walked from the end of the row to its start, so `from` may be the row itself.
template <bool prefetches>
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
            if constexpr (prefetches)
                _mm_prefetch(reinterpret_cast<const char*>(subtrahend - prefetchDistance), _MM_HINT_T1);
            B::Store(at, DifferenceOf(B::Load(at), B::Load(subtrahend)));
        }
        B::Store(first, head);
    } else if (rowBytes > pixelBytes) {
        const std::size_t part = rowBytes - pixelBytes;
        B::StorePart(first, DifferenceOf(B::LoadPart(first, part), B::LoadPart(from + (pixelBytes - left), part)),
                     part);
    }
    ClearEnds(row, rowBytes);
}

// Makes the rows before `end` down to `first`, each from the one before it, the first of them from `saved`; or each
// from itself.
template <bool prefetches>
VIXA_INLINE void ShiftRows(std::uint8_t* frame, std::size_t rowBytes, std::size_t first, std::size_t end, bool above,
                           std::size_t left, const std::uint8_t* saved) noexcept
{
    for (std::size_t y = end; y-- > first;) {
        std::uint8_t* const row = frame + y * rowBytes;
        const std::uint8_t* const from = !above ? row : y > first ? row - rowBytes : saved;
        ShiftRow<prefetches>(row, from, left, rowBytes);
    }
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
        if ((end - first) * rowBytes > prefetchFrom)
            ShiftRows<true>(frame, rowBytes, first, end, above, left, saved);
        else
            ShiftRows<false>(frame, rowBytes, first, end, above, left, saved);
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
