// Rows of the table of C functions.
#include <iterator>

#include "function.h"
#include "lists.h"

namespace nuqi::python {
namespace {

const Row kRows[] = {
    // Means and deviations
    NUQI_FUNCTION(nuqiMean_8u_C1MR),
    NUQI_FUNCTION(nuqiMean_8s_C1MR),
    NUQI_FUNCTION(nuqiMean_32f_C1MR),
    NUQI_FUNCTION(nuqiMean_8u_C3CMR),
    NUQI_FUNCTION(nuqiMean_8s_C3CMR),
    NUQI_FUNCTION(nuqiMean_32f_C3CMR),
    NUQI_FUNCTION(nuqiMean_StdDev_8u_C1R),
    NUQI_FUNCTION(nuqiMean_StdDev_8s_C1R),
    NUQI_FUNCTION(nuqiMean_StdDev_32f_C1R),
    NUQI_FUNCTION(nuqiMean_StdDev_8u_C3CR),
    NUQI_FUNCTION(nuqiMean_StdDev_8s_C3CR),
    NUQI_FUNCTION(nuqiMean_StdDev_32f_C3CR),
    NUQI_FUNCTION(nuqiMean_StdDev_8u_C1MR),
    NUQI_FUNCTION(nuqiMean_StdDev_8s_C1MR),
    NUQI_FUNCTION(nuqiMean_StdDev_32f_C1MR),
    NUQI_FUNCTION(nuqiMean_StdDev_8u_C3CMR),
    NUQI_FUNCTION(nuqiMean_StdDev_8s_C3CMR),
    NUQI_FUNCTION(nuqiMean_StdDev_32f_C3CMR),
    // Norms
    NUQI_FUNCTION(nuqiNorm_Inf_8u_C1MR),
    NUQI_FUNCTION(nuqiNorm_Inf_8s_C1MR),
    NUQI_FUNCTION(nuqiNorm_Inf_32f_C1MR),
    NUQI_FUNCTION(nuqiNorm_L1_8u_C1MR),
    NUQI_FUNCTION(nuqiNorm_L1_8s_C1MR),
    NUQI_FUNCTION(nuqiNorm_L1_32f_C1MR),
    NUQI_FUNCTION(nuqiNorm_L2_8u_C1MR),
    NUQI_FUNCTION(nuqiNorm_L2_8s_C1MR),
    NUQI_FUNCTION(nuqiNorm_L2_32f_C1MR),
    NUQI_FUNCTION(nuqiNorm_Inf_8u_C3CMR),
    NUQI_FUNCTION(nuqiNorm_Inf_8s_C3CMR),
    NUQI_FUNCTION(nuqiNorm_Inf_32f_C3CMR),
    NUQI_FUNCTION(nuqiNorm_L1_8u_C3CMR),
    NUQI_FUNCTION(nuqiNorm_L1_8s_C3CMR),
    NUQI_FUNCTION(nuqiNorm_L1_32f_C3CMR),
    NUQI_FUNCTION(nuqiNorm_L2_8u_C3CMR),
    NUQI_FUNCTION(nuqiNorm_L2_8s_C3CMR),
    NUQI_FUNCTION(nuqiNorm_L2_32f_C3CMR),
    NUQI_FUNCTION(nuqiNormDiff_Inf_8u_C1MR),
    NUQI_FUNCTION(nuqiNormDiff_Inf_8s_C1MR),
    NUQI_FUNCTION(nuqiNormDiff_Inf_32f_C1MR),
    NUQI_FUNCTION(nuqiNormDiff_L1_8u_C1MR),
    NUQI_FUNCTION(nuqiNormDiff_L1_8s_C1MR),
    NUQI_FUNCTION(nuqiNormDiff_L1_32f_C1MR),
    NUQI_FUNCTION(nuqiNormDiff_L2_8u_C1MR),
    NUQI_FUNCTION(nuqiNormDiff_L2_8s_C1MR),
    NUQI_FUNCTION(nuqiNormDiff_L2_32f_C1MR),
    NUQI_FUNCTION(nuqiNormDiff_Inf_8u_C3CMR),
    NUQI_FUNCTION(nuqiNormDiff_Inf_8s_C3CMR),
    NUQI_FUNCTION(nuqiNormDiff_Inf_32f_C3CMR),
    NUQI_FUNCTION(nuqiNormDiff_L1_8u_C3CMR),
    NUQI_FUNCTION(nuqiNormDiff_L1_8s_C3CMR),
    NUQI_FUNCTION(nuqiNormDiff_L1_32f_C3CMR),
    NUQI_FUNCTION(nuqiNormDiff_L2_8u_C3CMR),
    NUQI_FUNCTION(nuqiNormDiff_L2_8s_C3CMR),
    NUQI_FUNCTION(nuqiNormDiff_L2_32f_C3CMR),
    NUQI_FUNCTION(nuqiNormRel_Inf_8u_C1MR),
    NUQI_FUNCTION(nuqiNormRel_Inf_8s_C1MR),
    NUQI_FUNCTION(nuqiNormRel_Inf_32f_C1MR),
    NUQI_FUNCTION(nuqiNormRel_L1_8u_C1MR),
    NUQI_FUNCTION(nuqiNormRel_L1_8s_C1MR),
    NUQI_FUNCTION(nuqiNormRel_L1_32f_C1MR),
    NUQI_FUNCTION(nuqiNormRel_L2_8u_C1MR),
    NUQI_FUNCTION(nuqiNormRel_L2_8s_C1MR),
    NUQI_FUNCTION(nuqiNormRel_L2_32f_C1MR),
    NUQI_FUNCTION(nuqiNormRel_Inf_8u_C3CMR),
    NUQI_FUNCTION(nuqiNormRel_Inf_8s_C3CMR),
    NUQI_FUNCTION(nuqiNormRel_Inf_32f_C3CMR),
    NUQI_FUNCTION(nuqiNormRel_L1_8u_C3CMR),
    NUQI_FUNCTION(nuqiNormRel_L1_8s_C3CMR),
    NUQI_FUNCTION(nuqiNormRel_L1_32f_C3CMR),
    NUQI_FUNCTION(nuqiNormRel_L2_8u_C3CMR),
    NUQI_FUNCTION(nuqiNormRel_L2_8s_C3CMR),
    NUQI_FUNCTION(nuqiNormRel_L2_32f_C3CMR),
    // Minimum and maximum
    NUQI_FUNCTION(nuqiMinMaxIndx_8u_C1R),
    NUQI_FUNCTION(nuqiMinMaxIndx_8s_C1R),
    NUQI_FUNCTION(nuqiMinMaxIndx_32f_C1R),
    NUQI_FUNCTION(nuqiMinMaxIndx_8u_C3CR),
    NUQI_FUNCTION(nuqiMinMaxIndx_8s_C3CR),
    NUQI_FUNCTION(nuqiMinMaxIndx_32f_C3CR),
    NUQI_FUNCTION(nuqiMinMaxIndx_8u_C1MR),
    NUQI_FUNCTION(nuqiMinMaxIndx_8s_C1MR),
    NUQI_FUNCTION(nuqiMinMaxIndx_32f_C1MR),
    NUQI_FUNCTION(nuqiMinMaxIndx_8u_C3CMR),
    NUQI_FUNCTION(nuqiMinMaxIndx_8s_C3CMR),
    NUQI_FUNCTION(nuqiMinMaxIndx_32f_C3CMR),
    // Histograms
    NUQI_BODY(nuqiCalcHist_8u_C1R, histogram,
              "src : (h, w) array of uint8\nhist : (max(n - 1, 1),) array of int32, "
              "written\nlevels : (n,) array of uint8",
              nullptr),
    NUQI_BODY(nuqiCalcHist_8u_C2R, joint_histogram,
              "src : (h, w, 2) array of uint8\nhist : (rows, columns) array of int32, "
              "written\nlevels : (columns + rows + 2,) array of int32",
              nullptr),
    NUQI_BODY(nuqiConvertHist1D_32s32f, check_histogram,
              "src : (n,) array of int32\ndst : (n,) array of float32, written\nflag : int",
              nullptr),
};

}  // namespace

Rows statistics_rows() { return {kRows, std::size(kRows)}; }

}  // namespace nuqi::python
