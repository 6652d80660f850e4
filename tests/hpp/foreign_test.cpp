// Images of another library: Eigen's matrices whose rows are contiguous.
#include <gtest/gtest.h>

#include <nuqi/nuqi.hpp>

#if __has_include(<Eigen/Core>)
#include <Eigen/Core>

template <class T, int Rows, int Columns, int Options>
struct nuqi::ImageTraits<Eigen::Matrix<T, Rows, Columns, Options>> {
  using Matrix = Eigen::Matrix<T, Rows, Columns, Options>;
  static constexpr int channels = 1;
  static constexpr bool row_major = Matrix::IsRowMajor;
  static T* data(Matrix& image) { return image.data(); }
  static const T* data(const Matrix& image) { return image.data(); }
  static std::int64_t rows(const Matrix& image) { return image.rows(); }
  static std::int64_t columns(const Matrix& image) { return image.cols(); }
  static std::ptrdiff_t row_stride_bytes(const Matrix& image) {
    return image.outerStride() * static_cast<std::ptrdiff_t>(sizeof(T));
  }
};

TEST(Foreign, MatricesOfEigenAreImages) {
  using Matrix = Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
  Matrix a = Matrix::Random(5, 7);
  const Matrix b = Matrix::Random(5, 7);
  Matrix dst(5, 7);
  nuqi::abs_diff(a, b, dst);
  EXPECT_EQ(dst, (a - b).cwiseAbs());
  Matrix narrow(5, 6);
  EXPECT_THROW(nuqi::abs_diff(a, b, narrow), nuqi::Error);
  Matrix none;
  EXPECT_EQ(nuqi::abs_diff(none, none, none, std::nothrow), StatusBadSize);
}
#endif
