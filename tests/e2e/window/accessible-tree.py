# accessible-tree.py: what assistive technology sees and does, by way of the AT-SPI bus. Answers each line of
# JSON on standard input with one on standard output: {"ok": ...} or {"error": "..."}.
import json
import sys
import time

import pyatspi
from gi.repository import Atspi, GLib

PAUSE = 0.04  # Seconds between two looks.

known = []  # An element's number is its place here.


class NotThere(Exception):
    pass


def attempt(question, otherwise=None):
    """An element may go while it is asked."""
    try:
        return question()
    except (GLib.Error, NotImplementedError, LookupError, RuntimeError):
        return otherwise


def states_of(accessible):
    states = attempt(lambda: accessible.getState().getStates(), [])
    return {pyatspi.stateToString(state) for state in states}


def role_of(accessible):
    return attempt(accessible.getRoleName, "")


def children_of(accessible):
    count = attempt(lambda: accessible.childCount, 0)
    children = (attempt(lambda at=at: accessible.getChildAtIndex(at)) for at in range(count))
    return [child for child in children if child is not None]


def applications():
    desktop = pyatspi.Registry.getDesktop(0)
    for application in children_of(desktop):
        application.set_cache_mask(Atspi.Cache.NONE)
        yield application


def number_of(accessible):
    for number, other in enumerate(known):
        if other == accessible:
            return number
    known.append(accessible)
    return len(known) - 1


def value_of(accessible):
    value = attempt(accessible.queryValue)
    if value is None:
        return None
    return {
        "now": value.currentValue,
        "least": value.minimumValue,
        "most": value.maximumValue,
        "step": value.minimumIncrement,
    }


def text_of(accessible):
    text = attempt(accessible.queryText)
    return None if text is None else text.getText(0, -1)


def actions_of(accessible):
    action = attempt(accessible.queryAction)
    return [] if action is None else [action.getName(at) for at in range(action.nActions)]


def box_of(accessible):
    component = attempt(accessible.queryComponent)
    if component is None:
        return [0, 0, 0, 0]
    box = component.getExtents(pyatspi.DESKTOP_COORDS)
    return [box.x, box.y, box.width, box.height]


def described(accessible):
    """All that there is to say of an element but its children."""
    return {
        "id": number_of(accessible),
        "role": role_of(accessible),
        "name": attempt(lambda: accessible.name, ""),
        "description": attempt(lambda: accessible.description, ""),
        "states": sorted(states_of(accessible)),
        "box": attempt(lambda: box_of(accessible), [0, 0, 0, 0]),
        "value": attempt(lambda: value_of(accessible)),
        "text": attempt(lambda: text_of(accessible)),
        "actions": attempt(lambda: actions_of(accessible), []),
    }


def shown_below(accessible):
    """The element and all below it that are shown, each before its children."""
    if "showing" not in states_of(accessible):
        return
    yield accessible
    for child in children_of(accessible):
        yield from shown_below(child)


def roots(request):
    if "within" in request:
        return [known[request["within"]]]
    return [window for application in applications() for window in children_of(application)]


def everything(request):
    for root in roots(request):
        yield from shown_below(root)


def is_wanted(accessible, wanted):
    if "role" in wanted and role_of(accessible) != wanted["role"]:
        return False
    name = attempt(lambda: accessible.name, "")
    if "name" in wanted and name != wanted["name"]:
        return False
    if not name.startswith(wanted.get("begins", "")):
        return False
    if "description" in wanted and attempt(lambda: accessible.description, "") != wanted["description"]:
        return False
    states = wanted.get("states", [])
    return not states or states_of(accessible).issuperset(states)


def wait_for(request, look):
    """What `look` finds, as soon as it finds something."""
    deadline = time.monotonic() + request["seconds"]
    while True:
        found = attempt(look)
        if found is not None:
            return found
        if time.monotonic() > deadline:
            raise NotThere(f"{json.dumps(request)} in vain")
        time.sleep(PAUSE)


def find(request):
    def look():
        for accessible in everything(request):
            if is_wanted(accessible, request["wanted"]):
                return described(accessible)
        return None

    return wait_for(request, look)


def miss(request):
    def look():
        return None if any(is_wanted(each, request["wanted"]) for each in everything(request)) else True

    return wait_for(request, look)


def find_all(request):
    return [described(each) for each in everything(request) if is_wanted(each, request["wanted"])]


def look(request):
    return described(known[request["id"]])


def has_focus(accessible):
    """A list's current row calls itself focused even while the keyboard is elsewhere."""
    states = states_of(accessible)
    if "focused" not in states:
        return False
    return not states.issuperset({"transient", "selectable"}) or "focused" in states_of(accessible.parent)


def focused(request):
    """The innermost element that has the focus: a list has it as well as its row, and the viewport of a text as well
    as the text, which is the one that focus is announced of."""

    def has_it(each):
        return has_focus(each) and role_of(each) != "filler"

    def look():
        having = [each for each in everything(request) if attempt(lambda each=each: has_it(each), False)]
        return described(having[-1]) if having else None

    return wait_for(request, look)


def children(request):
    return [described(child) for child in children_of(known[request["id"]])]


def act(request):
    action = known[request["id"]].queryAction()
    for at in range(action.nActions):
        if action.getName(at) == request["action"]:
            return action.doAction(at)
    raise NotThere(f"no action {request['action']}")


def set_value(request):
    known[request["id"]].queryValue().currentValue = request["value"]
    return True


def set_text(request):
    return known[request["id"]].queryEditableText().setTextContents(request["text"])


answers = {
    "find": find,
    "miss": miss,
    "find all": find_all,
    "look": look,
    "focused": focused,
    "children": children,
    "act": act,
    "set value": set_value,
    "set text": set_text,
}

print(json.dumps({"ok": "ready"}), flush=True)
for line in sys.stdin:
    asked = json.loads(line)
    try:
        answer = {"ok": answers[asked["do"]](asked)}
    except Exception as error:  # Whatever it is, the test is to tell it.
        answer = {"error": f"{type(error).__name__}: {error}"}
    print(json.dumps(answer), flush=True)
