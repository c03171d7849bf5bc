"""Whether all say the same of a board: its cards, its hub, and whoever follows them."""
import json

from board import CONTACTS, KNOBS
from writers import LAMPS, SERVO

FIELDS = {LAMPS: "Lines", SERVO: "Positions"}
FIELDS.update(dict.fromkeys(CONTACTS, "Lines") | dict.fromkeys(KNOBS, "Values"))


async def held_by(board):
    """What the cards themselves hold, as values of channels."""
    held = {}
    for card, field in FIELDS.items():
        shown = (await board.order(f"show {card}")).split("\n")
        words = next(line for line in shown if line.strip().startswith(field)).split()[1:]
        values = [int(word, 16) for word in words]
        if field == "Lines":  # a lamp is on while its line is low
            values = [bool(values[n // 8] >> n % 8 & 1) != (card == LAMPS) for n in range(16)]
        held.update((f"{card}.{n}", value) for n, value in enumerate(values))
    return held


def values_of(cards):
    """Of the API's answer."""
    return {
        channel["id"]: channel["value"]
        for card in json.loads(cards)["cards"]
        for channel in card["channels"]
    }


def as_payload(value):
    return ("ON" if value else "OFF") if isinstance(value, bool) else str(value)


def as_shown(value):
    return as_payload(value).lower()


async def differences(each, neighbour, kept, page):
    """One line for each thing of a board that somebody sees otherwise than its cards have it.

    neighbour: the board that shows all of them, or None for that board itself
    kept: what a new client of the broker is told, by topic
    page: what the board's page shows; None where there is none
    """
    board = each.board
    held = await held_by(board)
    asked = {id: value for writer in each.writers for id, value in writer.asked.items()}
    held = {id: held[id] for id in held if id[0] != SERVO or id in asked}
    topics = {id: kept.get(f"qelm/{board.name}/{id.replace('.', '/')}") for id in held}
    seen = {
        "was asked": {**held, **asked},
        "the API": values_of((await board.ask("GET", "/api/cards"))[1]),
        "qelmctl": values_of((await board.ctl("--json", "cards"))[1]),
    }
    if neighbour:
        _, text = await neighbour.ask("GET", f"/api/boards/{board.name}/cards")
        seen["the other hub"] = values_of(text)
    for number, follower in enumerate([each.first, *each.guests]):
        if follower.is_current:
            seen[f"client {number}"] = follower.values
    spelt = [(who, values, lambda value: value) for who, values in seen.items()]
    spelt.append(("the broker", topics, as_payload))
    if page is not None:
        spelt.append(("the page", page, as_shown))
    found = [
        f"{board.name}: {id} is {value}; {who}: {values.get(id)}"
        for who, values, spell in spelt
        for id, value in held.items()
        if values.get(id) != spell(value)
    ]
    for old in each.old:
        for block, value in old.blocks.items():
            id = f"{block[1]}.{block[3]}"
            if block[1] in KNOBS and int(value, 16) != held[id]:
                found.append(f"{board.name}: {id} is {held[id]}; an old client: {value}")
    _, text = await board.ask("GET", "/api/cards/E")
    row = json.loads(text)["glass"]["rows"][0]
    if row != each.texts.text:
        found.append(f"{board.name}: the glass shows {row}; it was asked for {each.texts.text}")
    return found
