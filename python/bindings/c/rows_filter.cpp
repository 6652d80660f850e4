// Rows of the table of C functions.
#include <iterator>

#include "function.h"
#include "state.h"

namespace nuqi::python {
namespace {

const Row kRows[] = {
    // Fixed 3x3 derivatives
    NUQI_FUNCTION(nuqiSobel3x3_Dx_8u16s_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_Dx_8s16s_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_Dx_32f_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_Dy_8u16s_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_Dy_8s16s_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_Dy_32f_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_D2x_8u16s_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_D2x_8s16s_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_D2y_8u16s_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_D2y_8s16s_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_DxDy_8u16s_C1R),
    NUQI_FUNCTION(nuqiSobel3x3_DxDy_8s16s_C1R),
    NUQI_FUNCTION(nuqiScharr_Dx_8u16s_C1R),
    NUQI_FUNCTION(nuqiScharr_Dx_8s16s_C1R),
    NUQI_FUNCTION(nuqiScharr_Dx_32f_C1R),
    NUQI_FUNCTION(nuqiScharr_Dy_8u16s_C1R),
    NUQI_FUNCTION(nuqiScharr_Dy_8s16s_C1R),
    NUQI_FUNCTION(nuqiScharr_Dy_32f_C1R),
    // Filter states
    NUQI_FUNCTION(nuqiSobelInitAlloc),
    NUQI_FUNCTION(nuqiBlurInitAlloc),
    NUQI_FUNCTION(nuqiLaplaceInitAlloc),
    NUQI_BODY(nuqiConvolFree, free_state, "state : ConvolState", nullptr),
    // Blur
    NUQI_FUNCTION(nuqiBlur_8u16s_C1R),
    NUQI_FUNCTION(nuqiBlur_8s16s_C1R),
    NUQI_FUNCTION(nuqiBlur_32f_C1R),
    // Sobel
    NUQI_FUNCTION(nuqiSobel_8u16s_C1R),
    NUQI_FUNCTION(nuqiSobel_8s16s_C1R),
    NUQI_FUNCTION(nuqiSobel_32f_C1R),
    // Laplace
    NUQI_FUNCTION(nuqiLaplace_8u16s_C1R),
    NUQI_FUNCTION(nuqiLaplace_8s16s_C1R),
    NUQI_FUNCTION(nuqiLaplace_32f_C1R),
};

}  // namespace

Rows filter_rows() { return {kRows, std::size(kRows)}; }

}  // namespace nuqi::python
