// Several point effects in one pass over a frame. Included after the level's Gamma and Mapping, inside the same
// anonymous namespace.

VIXA_INLINE Vector KeepFourth(Vector result, Vector before) noexcept
{
    const Vector fourth = B::Pattern(0xFF000000u);
    return B::Or(B::AndNot(fourth, result), B::And(fourth, before));
}

#if UINTPTR_MAX == UINT32_MAX

// Constants and vectors of several effects do not fit eight registers, so the effects take turns on pieces of the frame
// that stay in the nearest cache. Larger pieces were slower.
constexpr std::size_t pieceBytes = 4096;

void RunOn(std::uint8_t* piece, std::size_t pixels, const PointStep& step) noexcept
{
    switch (step.kind) {
    case PointKind::Gamma:
        return Gamma(piece, pixels, step.table);
    case PointKind::Multiply:
        return Multiply(piece, pixels, step.first);
    case PointKind::Invert:
        return Invert(piece, pixels, step.first);
    case PointKind::FilterColor:
        return FilterColor(piece, pixels, step.colour, step.first, step.brighten);
    case PointKind::Add:
        return Add(piece, pixels, step.first, step.second);
    }
}

void RunPoints(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels, const PointStep* steps,
               std::size_t count, bool keepFourth) noexcept
{
    const std::size_t bytes = pixels * pixelBytes;
    for (std::size_t at = 0; at < bytes; at += pieceBytes) {
        const std::size_t part = bytes - at < pieceBytes ? bytes - at : pieceBytes;
        std::uint8_t before[pieceBytes];
        if (keepFourth)
            std::memcpy(before, from + at, part);
        if (from != to)
            std::memcpy(to + at, from + at, part);
        for (std::size_t i = 0; i < count; ++i)
            RunOn(to + at, part / pixelBytes, steps[i]);
        for (std::size_t i = 3; keepFourth && i < part; i += pixelBytes)
            to[at + i] = before[i];
    }
}

#else // sixteen registers or more

// What an effect needs of constants is made for so many vectors at once; more of them would not fit the registers.
constexpr std::size_t runVectors = B::registers / 4;

VIXA_INLINE void RunOn(Vector (&vectors)[runVectors], const PointStep& step) noexcept
{
    const auto use = [&](const auto& change) VIXA_INLINE_LAMBDA {
#pragma GCC unroll 8
        for (Vector& v : vectors)
            v = change(v);
    };
    switch (step.kind) {
    case PointKind::Gamma:
        return use(Mapping(step.table));
    case PointKind::Multiply:
        return use(Multiplying(step.first));
    case PointKind::Invert:
        return use(Inverting(step.first));
    case PointKind::FilterColor:
        return WithFiltering(step.colour, step.first, step.brighten, use);
    case PointKind::Add:
        return use(Adding(step.first, step.second));
    }
}

void RunPoints(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels, const PointStep* steps,
               std::size_t count, bool keepFourth) noexcept
{
    constexpr std::size_t block = runVectors * B::bytes;
    const std::size_t bytes = pixels * pixelBytes;
    for (std::size_t at = 0; at < bytes; at += block) {
        const std::size_t part = bytes - at;
        std::uint8_t rest[block];
        const std::uint8_t* in = from + at;
        std::uint8_t* out = to + at;
        if (part < block) {
            std::memset(rest, 0, block);
            std::memcpy(rest, in, part);
            in = out = rest;
        }
        Vector vectors[runVectors];
#pragma GCC unroll 8
        for (std::size_t i = 0; i < runVectors; ++i)
            vectors[i] = B::Load(in + i * B::bytes);
        for (std::size_t i = 0; i < count; ++i)
            RunOn(vectors, steps[i]);
        if (keepFourth) {
#pragma GCC unroll 8
            for (std::size_t i = 0; i < runVectors; ++i)
                vectors[i] = KeepFourth(vectors[i], B::Load(in + i * B::bytes));
        }
#pragma GCC unroll 8
        for (std::size_t i = 0; i < runVectors; ++i)
            B::Store(out + i * B::bytes, vectors[i]);
        if (part < block)
            std::memcpy(to + at, rest, part);
    }
}

#endif
