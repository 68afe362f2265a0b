"""`python -m orsolva.archive`: the same as `orsolva archive`."""
from __future__ import annotations

import sys

from .command import main
from .workers import without_pandas

if __name__ == "__main__":
    without_pandas()
    sys.exit(main())
