"""Settings of the documentation site, which `scripts/docs` builds."""

import os
import pathlib
import re

import furo
from pygments.lexers.basic import VBScriptLexer

ROOT = pathlib.Path(__file__).resolve().parent.parent

project = "AQ_Data_Control"
author = "The AQ_Data_Control developers"
release = re.search(r"VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text().split("project(")[1])[1]
extensions = ["myst_parser", "breathe", "sphinx.ext.autodoc"]
html_theme = "furo"


def dark_colours():
    """The theme's dark colours, which the Debian package's style omits for systems in dark mode."""
    style = pathlib.Path(furo.__file__).parent / "theme/furo/static/styles/furo.css"
    dark = re.search(r'body\[data-theme="dark"\] \{(.*?)\}', style.read_text(), re.S)
    return dict(re.findall(r"--([\w-]+): ([^;]+);", dark[1])) if dark else {}


html_theme_options = {"dark_css_variables": dark_colours()}
html_title = f"AQ_Data_Control {release}"
html_static_path = ["static"]
html_css_files = ["site.css"]

myst_heading_anchors = 3
myst_enable_extensions = ["colon_fence"]
default_role = "code"  # docstrings quote code in single backticks
breathe_projects = {"aq": os.environ.get("AQ_DOXYGEN_XML", str(ROOT / "build/docs/doxygen/xml"))}
breathe_default_project = "aq"
breathe_default_members = ("members",)
autodoc_member_order = "bysource"
autodoc_typehints = "none"


def add_guides(app, name, source):
    """Adds the pages that the index does not list to its guides."""
    if name == "index":
        listed = set(re.findall(r"^[a-z-]+$", source[0], re.M)) | {"index"}
        others = {path.stem for path in pathlib.Path(app.srcdir).glob("*.md")} - listed
        source[0] = source[0].replace("OTHERS", "\n".join(sorted(others)))


def setup(app):
    app.connect("source-read", add_guides)
    app.add_lexer("vb", VBScriptLexer)
