// Template matching of unsigned bytes.
#include "match/match_bytes.h"

namespace nuqi::NUQI_ISA {

const MatchKernels8u match_template_8u_kernels = {{
    match<Measure::sq_diff, uint8_t>,
    match<Measure::sq_diff_normed, uint8_t>,
    match<Measure::corr, uint8_t>,
    match<Measure::corr_normed, uint8_t>,
    match<Measure::coeff, uint8_t>,
    match<Measure::coeff_normed, uint8_t>,
}};

}  // namespace nuqi::NUQI_ISA
