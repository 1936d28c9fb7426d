// Points, vectors and the matrices of content streams (ISO 32000-2 8.3.4).
#pragma once

namespace varnpdf {

struct Vector {
    double x = 0;
    double y = 0;

    friend constexpr Vector operator+(Vector a, Vector b) noexcept { return {a.x + b.x, a.y + b.y}; }
    friend constexpr Vector operator-(Vector a, Vector b) noexcept { return {a.x - b.x, a.y - b.y}; }
    friend constexpr Vector operator*(Vector a, double factor) noexcept { return {a.x * factor, a.y * factor}; }
};

constexpr double dot(Vector a, Vector b) noexcept { return a.x * b.x + a.y * b.y; }

/// [a b c d e f] as written: a point (x y) goes to (ax + cy + e, bx + dy + f).
struct Matrix {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double e = 0;
    double f = 0;

    [[nodiscard]] constexpr Vector direction(Vector v) const noexcept { return {a * v.x + c * v.y, b * v.x + d * v.y}; }
    [[nodiscard]] constexpr Vector point(Vector v) const noexcept { return direction(v) + Vector{e, f}; }
    /// First the left, then the right one.
    friend constexpr Matrix operator*(const Matrix& m, const Matrix& n) noexcept {
        return {m.a * n.a + m.b * n.c, m.a * n.b + m.b * n.d,       m.c * n.a + m.d * n.c,
                m.c * n.b + m.d * n.d, m.e * n.a + m.f * n.c + n.e, m.e * n.b + m.f * n.d + n.f};
    }
};

}  // namespace varnpdf
