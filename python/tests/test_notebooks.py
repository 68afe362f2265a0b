"""The notebooks of the documentation run as they are, from top to bottom."""
import json
import os
import pathlib

import pytest

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "docs/user/notebooks"
NOTEBOOKS = sorted(FOLDER.glob("*.ipynb"))


def test_there_are_two():
    assert len(NOTEBOOKS) >= 2


@pytest.mark.parametrize("path", NOTEBOOKS, ids=lambda path: path.stem)
def test_a_notebook_is_kept_without_outputs(path):
    notebook = json.loads(path.read_text(encoding="utf-8"))
    code = [cell for cell in notebook["cells"] if cell["cell_type"] == "code"]
    assert code and all(cell["outputs"] == [] and cell["execution_count"] is None for cell in code)
    assert path.read_text(encoding="utf-8") == json.dumps(notebook, indent=1, ensure_ascii=False) + "\n"


@pytest.mark.parametrize("path", NOTEBOOKS, ids=lambda path: path.stem)
def test_a_notebook_runs(path, tmp_path, monkeypatch):
    nbformat = pytest.importorskip("nbformat")
    nbclient = pytest.importorskip("nbclient")
    pytest.importorskip("ipykernel")
    for name in ("matplotlib", "pandas", "polars"):
        pytest.importorskip(name)
    paths = os.environ.get("PYTHONPATH", "").split(os.pathsep)
    monkeypatch.setenv("PYTHONPATH", os.pathsep.join(str(pathlib.Path(one).resolve()) for one in paths if one))
    monkeypatch.setenv("IPYTHONDIR", str(tmp_path / "ipython"))
    notebook = nbformat.read(path, as_version=4)
    nbformat.validate(notebook)
    nbclient.NotebookClient(notebook, timeout=300, kernel_name="python3", resources={"metadata": {"path": str(tmp_path)}}).execute()
    outputs = [output for cell in notebook.cells if cell.cell_type == "code" for output in cell.outputs]
    assert not [output for output in outputs if output.get("name") == "stderr"], outputs
    kinds = [kind for output in outputs for kind in output.get("data", {})]
    assert "image/png" in kinds and "text/html" in kinds
