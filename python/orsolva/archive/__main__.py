"""`python -m orsolva.archive`: the same as `orsolva archive`."""
from __future__ import annotations

import sys

from .command import main

if __name__ == "__main__":
    sys.exit(main())
