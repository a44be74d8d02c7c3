"""The notebook, and round trips through what other packages have."""

import subprocess
import sys
from pathlib import Path

import pytest

EXAMPLES = Path(__file__).resolve().parents[2] / "examples"


def test_the_notebook_runs():
    nbformat = pytest.importorskip("nbformat")
    nbclient = pytest.importorskip("nbclient")
    notebook = nbformat.read(EXAMPLES / "notebook" / "plate.ipynb", as_version=4)
    client = nbclient.NotebookClient(notebook, timeout=120, resources={"metadata": {"path": str(EXAMPLES / "notebook")}})
    client.create_kernel_manager()
    client.km.kernel_spec.argv[0] = sys.executable  # where the package is
    client.execute()
    shown = [output for cell in notebook.cells for output in cell.get("outputs", []) if "image/svg+xml" in output.get("data", {})]
    assert len(shown) == 4


@pytest.mark.parametrize("script", sorted(path.name for path in (EXAMPLES / "python").glob("*.py")))
def test_scripts_run(script, tmp_path):
    subprocess.run([sys.executable, EXAMPLES / "python" / script], cwd=tmp_path, check=True)
