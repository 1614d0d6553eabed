// Several point effects in one pass: a few vectors at a time go through all of them in registers. Included after the
// level's Mapping, inside the same anonymous namespace.

// What an effect needs of constants is made for so many vectors at once; more of them would not fit the registers.
constexpr std::size_t runVectors = B::registers / 4;

VIXA_INLINE void RunOn(Vector (&vectors)[runVectors], const PointStep& step) noexcept
{
    const auto use = [&](const auto& change) __attribute__((always_inline))
    {
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
    const Vector fourth = B::Pattern(0xFF000000u);
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
                vectors[i] = B::Or(B::AndNot(fourth, vectors[i]), B::And(fourth, B::Load(in + i * B::bytes)));
        }
#pragma GCC unroll 8
        for (std::size_t i = 0; i < runVectors; ++i)
            B::Store(out + i * B::bytes, vectors[i]);
        if (part < block)
            std::memcpy(to + at, rest, part);
    }
}
