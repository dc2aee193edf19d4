# Filled by the packaging step.
