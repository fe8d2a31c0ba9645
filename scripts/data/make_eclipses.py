#!/usr/bin/env python3
"""Makes data/eclipses.csv from the tables beside this script.

eclipse_elements.csv  the Besselian elements, as published; copied as text, so that no digit changes
eclipse_facts.csv     what the program's own engine computes (the output of eclipse_facts)
eclipse_places.csv    by hand: where greatest eclipse falls, in words
eclipse_lands.csv     by hand: the lands on the path, each with a place in it that sees the central phase

eclipse_elements.csv and data/eclipses.csv have their rows in the order of the catalogue.
"""

import csv
import pathlib

HERE = pathlib.Path(__file__).resolve().parent
TARGET = HERE.parents[1] / "data" / "eclipses.csv"

# rows whose notes were written by hand
NOTES = {"2024-04-08": "Validation eclipse (the Canada trip). Carbondale IL ~4m08s."}

# rows whose ΔT was given together with their elements
GIVEN_DELTA_T = {"2024-04-08", "2026-02-17", "2026-08-12", "2049-11-25"}

PHASE = {"Total": "totality", "Annular": "annularity", "Hybrid": "the central phase"}


def rows(name):
    with open(HERE / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


def position(lat, lon):
    return f"{abs(lat):.1f}° {'N' if lat >= 0 else 'S'}, {abs(lon):.1f}° {'E' if lon >= 0 else 'W'}"


def duration(seconds):
    minutes, rest = divmod(round(seconds), 60)
    return f"{minutes} min {rest:02} s" if minutes else f"{rest} s"


def listed(names):
    return names[0] if len(names) == 1 else ", ".join(names[:-1]) + " and " + names[-1]


def delta_t_source(row):
    year = int(row["id"][:4])
    if row["id"] in GIVEN_DELTA_T:
        return "given with the elements"
    if year <= 2036:
        return "from the IERS and USNO predictions of 2026"
    if year == 2100 and row["delta_t"] == "204.1":
        return "the value of the Five Millennium Canon"
    return (
        "on a smooth curve from the IERS and USNO predictions for 2036 to the Five Millennium Canon's value for 2100"
    )


def notes(row, fact, place, lands):
    if row["id"] in NOTES:
        return NOTES[row["id"]]
    phase = PHASE[row["type"]]
    greatest = float(fact["greatest_seconds"])
    longest = float(fact["longest_seconds"])
    at_greatest = position(float(fact["greatest_lat"]), float(fact["greatest_lon"]))
    at_longest = position(float(fact["longest_lat"]), float(fact["longest_lon"]))
    sentences = [f"Greatest eclipse falls at {at_greatest}, {place}."]
    # the search for the longest phase goes along straight pieces of a coarse line, so that it may end a
    # little below what greatest eclipse itself has
    if longest <= greatest + 0.5:
        sentences.append(f"{phase[0].upper()}{phase[1:]} lasts longest there, {duration(max(greatest, longest))}.")
    else:
        sentences.append(
            f"{phase[0].upper()}{phase[1:]} lasts {duration(greatest)} there and longest, "
            f"{duration(longest)}, at {at_longest}."
        )
    if lands:
        sentences.append(f"The path runs over {listed(lands)}.")
    else:
        sentences.append("The path runs over the open sea.")
    sentences.append(f"ΔT {row['delta_t']} s, {delta_t_source(row)}.")
    return " ".join(sentences)


def main():
    elements = rows("eclipse_elements.csv")
    facts = {row["id"]: row for row in rows("eclipse_facts.csv")}
    places = {row["id"]: row["greatest_eclipse"] for row in rows("eclipse_places.csv")}
    lands = {}
    for row in rows("eclipse_lands.csv"):
        lands.setdefault(row["id"], []).append(row["land"])
    with open(TARGET, "w", encoding="utf-8", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow([*elements[0], "notes"])
        for row in elements:
            text = notes(row, facts[row["id"]], places[row["id"]], lands.get(row["id"], []))
            writer.writerow([*row.values(), text])


if __name__ == "__main__":
    main()
