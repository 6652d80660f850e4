// Template matching of signed bytes.
#include "match/match_bytes.h"

namespace nuqi::NUQI_ISA {

const MatchKernels8s match_template_8s_kernels = {{
    match<Measure::sq_diff, int8_t>,
    match<Measure::sq_diff_normed, int8_t>,
    match<Measure::corr, int8_t>,
    match<Measure::corr_normed, int8_t>,
    match<Measure::coeff, int8_t>,
    match<Measure::coeff_normed, int8_t>,
}};

}  // namespace nuqi::NUQI_ISA
