"""What a program shows, as assistive technology sees it: widgets by name and role, to be read, pressed and filled."""

from __future__ import annotations

import subprocess
from collections.abc import Iterator
from typing import Any

from lab.desktop import Desktop
from lab.waiting import wait_until

Widget = Any  # gi.repository.Atspi.Accessible, which has no types


class Screen:
    """The widgets of one process on a desktop."""

    desktop: Desktop
    process: subprocess.Popen[bytes]
    _accessible: Widget = None

    @property
    def root(self) -> Widget:
        """The program in the accessibility tree; waits for it."""
        if self._accessible is None:
            self._accessible = wait_until(self._registered, "the program is known to accessibility")
        return self._accessible

    def _registered(self) -> Widget:
        assert self.process.poll() is None, f"the program ended with {self.process.returncode}"
        desktop = _atspi().get_desktop(0)
        for index in range(desktop.get_child_count()):
            candidate = desktop.get_child_at_index(index)
            if candidate is not None and candidate.get_process_id() == self.process.pid:
                return candidate
        return None

    def all(self, name: str | None = None, role: str | None = None, under: Widget = None) -> list[Widget]:
        """The widgets on the screen with that name and role, in reading order of the tree."""
        return [node for node in walk(under or self.root)
                if (name is None or node.get_name() == name) and (role is None or node.get_role_name() == role)
                and showing(node)]

    def has(self, name: str, role: str | None = None) -> bool:
        """Whether such a widget is on the screen at this moment."""
        return bool(self.all(name, role))

    def find(self, name: str | None = None, role: str | None = None, under: Widget = None,
             deadline: float = 5.0) -> Widget:
        """The first such widget; waits for it to appear."""
        what = f"a widget {name!r} ({role or 'of any role'}) is on the screen"
        return wait_until(lambda: self.all(name, role, under), what, deadline)[0]

    def gone(self, name: str, role: str | None = None, deadline: float = 5.0) -> None:
        """Waits until no such widget is on the screen."""
        wait_until(lambda: not self.has(name, role), f"{name!r} leaves the screen", deadline)

    def menus(self, label: str) -> list[Widget]:
        """The choice menus on the screen with that label; a menu's own name is the choice that it shows."""
        return [node for node in self.all(role="combo box") if label in labels_of(node)]

    def find_menu(self, label: str) -> Widget:
        """The first choice menu with that label; waits for it to appear."""
        return wait_until(lambda: self.menus(label), f"a menu {label!r} is on the screen", 5.0)[0]

    def press(self, name: str, role: str | None = "push button", under: Widget = None) -> None:
        """Presses a button, or toggles a check box, by its accessibility action."""
        widget = self.find(name, role, under)
        wait_until(lambda: enabled(widget), f"{name!r} can be pressed")
        act(widget)

    def type(self, field: str, text: str, under: Widget = None) -> None:
        """Replaces the text of the entry with that name, a masked one included."""
        def look() -> list[Widget]:
            return [*self.all(field, "text", under), *self.all(field, "password text", under)]
        entry = wait_until(look, f"an entry {field!r} is on the screen", 5.0)[0]
        assert entry.get_editable_text_iface().set_text_contents(text), f"the field {field!r} takes no text"

    def texts(self, under: Widget = None) -> list[str]:
        """Every name that is to be read on the screen."""
        return [node.get_name() for node in walk(under or self.root) if node.get_name() and showing(node)]

    def click(self, widget: Widget, button: int = 1) -> None:
        """Clicks the middle of a widget with the mouse."""
        box = extents(widget)
        self.desktop.xdotool("mousemove", box.x + box.width // 2, box.y + box.height // 2, "click", button)


def walk(node: Widget) -> Iterator[Widget]:
    """A widget and everything below it; what vanishes meanwhile is left out."""
    from gi.repository import GLib

    yield node
    try:
        count = node.get_child_count()
    except GLib.Error:
        return
    for index in range(count):
        try:
            child = node.get_child_at_index(index)
            if child is not None:
                yield from walk(child)
        except GLib.Error:
            continue


def controls(node: Widget) -> Iterator[Widget]:
    """The widgets on the screen from `node` down, without the rows of lists, which may be many."""
    from gi.repository import GLib

    yield node
    try:
        if node.get_role_name() == "list":
            return
        children = [node.get_child_at_index(index) for index in range(node.get_child_count())]
        below = [child for child in children if child is not None and showing(child)]
    except GLib.Error:  # it vanished meanwhile
        return
    for child in below:
        yield from controls(child)


def called(node: Widget) -> str:
    """What a widget is called aloud: by its label, or by its own name. A choice menu's own name is its choice."""
    labels = labels_of(node)
    return " ".join(labels) if labels and node.get_role_name() == "combo box" else str(node.get_name())


def active(node: Widget) -> bool:
    """Whether a window has the keyboard."""
    return bool(node.get_state_set().contains(_atspi().StateType.ACTIVE))


def extents(node: Widget) -> Any:
    """Where a widget is on the screen: x, y, width and height."""
    return node.get_component_iface().get_extents(_atspi().CoordType.SCREEN)


def focused(node: Widget) -> bool:
    """Whether the widget has the keyboard."""
    return bool(node.get_state_set().contains(_atspi().StateType.FOCUSED))


def focusable(node: Widget) -> bool:
    """Whether the widget can have the keyboard."""
    return bool(node.get_state_set().contains(_atspi().StateType.FOCUSABLE))


def showing(node: Widget) -> bool:
    """Whether the widget is on the screen."""
    return bool(node.get_state_set().contains(_atspi().StateType.SHOWING))


def enabled(node: Widget) -> bool:
    """Whether the widget takes input."""
    return bool(node.get_state_set().contains(_atspi().StateType.ENABLED))


def selected(node: Widget) -> bool:
    """Whether a row of a list is the chosen one."""
    return bool(node.get_state_set().contains(_atspi().StateType.SELECTED))


def checked(node: Widget) -> bool:
    """Whether a check box or a toggle button is on."""
    return bool(node.get_state_set().contains(_atspi().StateType.CHECKED))


def editable(node: Widget) -> bool:
    """Whether a widget says that it can be written in."""
    return bool(node.get_state_set().contains(_atspi().StateType.EDITABLE))


def read_only(node: Widget) -> bool:
    """Whether a widget says that its text is only to be read."""
    return bool(node.get_state_set().contains(_atspi().StateType.READ_ONLY))


def labels_of(node: Widget) -> list[str]:
    """What the labels of a widget say."""
    relations = [each for each in node.get_relation_set()
                 if each.get_relation_type() == _atspi().RelationType.LABELLED_BY]
    return [each.get_target(index).get_name() for each in relations for index in range(each.get_n_targets())]


def act(widget: Widget, action: str = "") -> None:
    """Does a widget's action of that name; without a name the one that pressing it would do."""
    actions = widget.get_action_iface()
    names = [actions.get_action_name(index) for index in range(actions.get_n_actions())]
    wanted = [action] if action else ["Press", "Toggle"]
    chosen = next((names.index(name) for name in wanted if name in names), None)
    assert chosen is not None, f"{widget.get_name()!r} offers {names} and not {wanted}"
    actions.do_action(chosen)


def text_of(widget: Widget) -> str:
    """The text in an entry or an editor."""
    text = widget.get_text_iface()
    return str(text.get_text(0, text.get_character_count()))


def _atspi() -> Any:
    """The accessibility library, connected to the buses that the environment names when it is first used."""
    import gi

    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi

    if not Atspi.is_initialized():
        Atspi.init()
        Atspi.set_timeout(5000, 5000)
        # No main loop runs here to hear of changes, so nothing may be remembered.
        Atspi.get_desktop(0).set_cache_mask(Atspi.Cache.NONE)
    return Atspi
