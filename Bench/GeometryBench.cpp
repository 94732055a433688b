// Natural cubic splines compared with those of the GNU Scientific Library, which compute in double.
//
// Question: does another library evaluate a curve through 10^4 points faster, at random positions?
#include "Harness.h"

#include <ORLGeometry.h>

#include <gsl/gsl_interp.h>
#include <random>

namespace {

constexpr std::size_t kKnots = 10000;
constexpr std::size_t kPlaces = 1000000;

struct Material
{
    Material()
    {
        std::mt19937 random(8);
        std::uniform_real_distribution<float> step(0.25f, 1.75f);
        std::uniform_real_distribution<float> height(-10, 10);
        float x = 0;
        for (std::size_t i = 0; i < kKnots; ++i) {
            mX.push_back(x);
            mY.push_back(height(random));
            x += step(random);
        }
        std::uniform_real_distribution<float> place(0, mX.back());
        for (std::size_t i = 0; i < kPlaces; ++i) {
            mPlaces.push_back(place(random));
        }
        mBends.resize(kKnots);
        mWideX.assign(mX.begin(), mX.end());
        mWideY.assign(mY.begin(), mY.end());
    }

    std::vector<float> mX, mY, mBends, mPlaces;
    std::vector<double> mWideX, mWideY;
};

void Solve(Material& ioMaterial)
{
    gsl_interp* const spline = gsl_interp_alloc(gsl_interp_cspline, kKnots);
    Bench::Group("spline of 10^4 knots, solved")
        .Ours("SolveNaturalCubicSpline2D", Bench::AtMost(1.0),
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      ORL::Geometry::SolveNaturalCubicSpline2D(ioMaterial.mX.data(), ioMaterial.mY.data(), kKnots,
                                                               ioMaterial.mBends.data());
                      Bench::ClobberMemory();
                  }
              })
        .Peer("gsl_interp_cspline",
              [&](std::uint64_t n) {
                  while (n-- != 0) {
                      gsl_interp_init(spline, ioMaterial.mWideX.data(), ioMaterial.mWideY.data(), kKnots);
                      Bench::ClobberMemory();
                  }
              })
        .Run();
    gsl_interp_free(spline);
}

void Evaluate(Material& ioMaterial)
{
    gsl_interp* const spline = gsl_interp_alloc(gsl_interp_cspline, kKnots);
    gsl_interp_accel* const lastInterval = gsl_interp_accel_alloc();
    gsl_interp_init(spline, ioMaterial.mWideX.data(), ioMaterial.mWideY.data(), kKnots);
    ORL::Geometry::SolveNaturalCubicSpline2D(ioMaterial.mX.data(), ioMaterial.mY.data(), kKnots,
                                             ioMaterial.mBends.data());
    Bench::Group("spline of 10^4 knots, evaluated at 10^6 places")
        .Step(kPlaces)
        .Ours("InterpolateNaturalCubicSpline2D", Bench::AtMost(1.0),
              [&](std::uint64_t n) {
                  float y = 0;
                  for (std::uint64_t i = 0; i < n; ++i) {
                      ORL::Geometry::InterpolateNaturalCubicSpline2D(ioMaterial.mX.data(), ioMaterial.mY.data(),
                                                                     ioMaterial.mBends.data(), kKnots,
                                                                     ioMaterial.mPlaces[i % kPlaces], &y);
                      Bench::DoNotOptimize(y);
                  }
              })
        .Peer("gsl_interp_eval",
              [&](std::uint64_t n) {
                  for (std::uint64_t i = 0; i < n; ++i) {
                      const double y =
                          gsl_interp_eval(spline, ioMaterial.mWideX.data(), ioMaterial.mWideY.data(),
                                          static_cast<double>(ioMaterial.mPlaces[i % kPlaces]), lastInterval);
                      Bench::DoNotOptimize(y);
                  }
              })
        .Run();
    gsl_interp_accel_free(lastInterval);
    gsl_interp_free(spline);
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Start(argc, argv);
    Material material;
    Solve(material);
    Evaluate(material);
    return Bench::Finish();
}
