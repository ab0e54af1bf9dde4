#pragma once

namespace vyr::inspect {

enum EExitStatus { EXIT_FINE = 0, EXIT_FINDINGS = 1, EXIT_FAILED = 2 };

}  // namespace vyr::inspect
