#!/usr/bin/env python3
"""Writes the JSON benchmark corpora into the directory given as argument.

Deterministic (fixed seeds, standard library only), so every run measures
the same bytes:

  a_answer.json        ~5 MB document-authentication answer: nested objects,
                       500 field records, four 0.95-1.5 MB base64 images
  a2_answer_text.json  the same answer without the images (~235 KB)
  b_small_objects.json ~5 MB of many small objects (one array in an object)
  c_coordinates.json   ~2 MB of floating-point coordinates
  d_small_answer.json  ~2 KB answer
"""

import base64
import json
import os
import random
import sys

FIELD_NAMES = [
    "Address", "Address Line 1", "Address Line 2", "Birth Date", "Birth Place",
    "Class", "Country", "Document Class Name", "Document Number", "Endorsements",
    "Expiration Date", "Eye Color", "Full Name", "Given Name", "Hair Color",
    "Height", "Issue Date", "Issuing State Code", "Issuing State Name", "Nationality",
    "Nationality Code", "Restrictions", "Sex", "Surname", "Weight", "Photo",
    "Signature", "Personal Number", "Postal Code", "City", "Middle Name",
    "Document Discriminator", "Audit Information", "Inventory Control Number",
]
ALERT_NAMES = [
    "Birth Date Valid", "Document Expired", "Document Number Check Digit",
    "Visible Pattern", "Image Tampering Check", "Photo Printing", "Barcode Format",
    "Microprint", "Ultraviolet Pattern", "Photo Face Match",
]


def net_date(rng):
    # Milliseconds between 1950 and 2040, some before 1970.
    return "/Date(%d)/" % rng.randint(-631152000000, 2208988800000)


def guid(rng):
    h = "%032x" % rng.getrandbits(128)
    return "%s-%s-%s-%s-%s" % (h[:8], h[8:12], h[12:16], h[16:20], h[20:])


def text_value(rng):
    choice = rng.random()
    if choice < 0.1:
        return "M\u00fcller-\u00c7elik \u0160t\u011bp\u00e1nek"  # accented names
    if choice < 0.15:
        return "Line one\nLine two \"quoted\" \\ back"
    words = ["MAIN", "ST", "ANYTOWN", "CA", "90210", "JOHN", "Q", "PUBLIC", "D", "NONE"]
    return " ".join(rng.choice(words) for _ in range(rng.randint(1, 5)))


def field_record(rng, index):
    name = FIELD_NAMES[index % len(FIELD_NAMES)]
    is_date = "Date" in name
    value = net_date(rng) if is_date else text_value(rng)
    return {
        "Id": guid(rng),
        "Key": "%s_%d" % (name.replace(" ", ""), index),
        "Name": name,
        "Description": "The %s as read from the document" % name.lower(),
        "Value": value,
        "DataSource": rng.randint(1, 8),
        "IsConsistent": rng.random() < 0.9,
        "Reliability": round(rng.random(), 4),
        "Type": "datetime" if is_date else "string",
        "RegionReference": guid(rng),
        "DataFieldReferences": [guid(rng) for _ in range(rng.randint(0, 3))],
        "Elements": [
            {"Key": "Line %d" % k, "Value": text_value(rng), "Confidence": rng.randint(0, 100)}
            for k in range(rng.randint(0, 2))
        ],
    }


def image_string(rng, size):
    raw = rng.getrandbits(8 * (size * 3 // 4)).to_bytes(size * 3 // 4, "little")
    return base64.b64encode(raw).decode("ascii")


def answer(rng, field_count, image_sizes):
    doc = {
        "InstanceId": guid(rng),
        "Result": 1,
        "AuthenticationSensitivity": 0,
        "ProcessMode": 2,
        "EngineVersion": "22.11.0.812",
        "LibraryVersion": "22.11.0.7133",
        "ReleaseVersion": "1.3",
        "Biographic": {
            "Age": rng.randint(18, 90),
            "BirthDate": net_date(rng),
            "ExpirationDate": net_date(rng),
            "FullName": "JOHN QUINCY PUBLIC",
            "Gender": 1,
            "Photo": None,
            "UnexpiredAge": None,
        },
        "Classification": {
            "ClassificationDetails": {
                "Front": {
                    "Id": guid(rng),
                    "Class": 4,
                    "ClassCode": "DL",
                    "ClassName": "Drivers License",
                    "IssueType": "Standard",
                    "IssuerCode": "CA",
                    "IssuerName": "California",
                    "IssueYear": "2018",
                    "Size": 3,
                    "SupportedImages": [{"Light": 0, "Side": 0}, {"Light": 1, "Side": 0}],
                    "GeographicRegions": ["America"],
                    "IsGeneric": False,
                },
                "Back": None,
            },
            "Mode": 0,
            "OrientationChanged": False,
            "PartialMatches": [],
            "Type": {"Class": 4, "ClassCode": "DL", "Id": guid(rng), "IssueYear": "2018"},
        },
        "Alerts": [
            {
                "Id": guid(rng),
                "Actions": "The document should be examined carefully.",
                "DataFieldReferences": [],
                "Description": "Verified the %s" % name.lower(),
                "Disposition": "The check passed",
                "Key": name.replace(" ", ""),
                "Name": name,
                "Result": rng.randint(1, 4),
                "Model": None,
            }
            for name in ALERT_NAMES
        ],
        "Fields": [field_record(rng, i) for i in range(field_count)],
        "Regions": [
            {
                "Id": guid(rng),
                "Key": "Region %d" % i,
                "Rectangle": {
                    "Height": rng.randint(10, 500),
                    "Left": rng.randint(0, 1000),
                    "Top": rng.randint(0, 600),
                    "Width": rng.randint(10, 800),
                },
                "DocumentElement": rng.randint(1, 4),
            }
            for i in range(40)
        ],
        "Images": [
            {
                "GlareMetric": rng.randint(0, 100),
                "HorizontalResolution": 600,
                "IsCropped": True,
                "IsTampered": False,
                "Light": i % 3,
                "SharpnessMetric": rng.randint(0, 100),
                "Side": i % 2,
                "Uri": "https://services.example.com/documents/%s/image" % guid(rng),
                "VerticalResolution": 600,
                "Data": image_string(rng, size),
            }
            for i, size in enumerate(image_sizes)
        ],
        "Subscription": {"Id": guid(rng), "IsActive": True, "IsDevelopment": False,
                         "IsTrial": False, "Name": "Example Subscription",
                         "StorePII": False},
    }
    return doc


def small_objects(rng, target_size):
    items = []
    size = 2
    i = 0
    while size < target_size:
        item = {
            "id": i,
            "uuid": guid(rng),
            "name": text_value(rng),
            "active": rng.random() < 0.5,
            "score": round(rng.uniform(-1000, 1000), 3),
            "count": rng.randint(-2**40, 2**40),
            "tags": [rng.choice(["red", "green", "blue", "caf\u00e9", "na\u00efve"])
                     for _ in range(rng.randint(0, 4))],
            "parent": None if rng.random() < 0.7 else rng.randint(0, i + 1),
        }
        text = json.dumps(item, ensure_ascii=False, separators=(",", ":"))
        items.append(text)
        size += len(text.encode("utf-8")) + 1
        i += 1
    return "{\"items\":[" + ",".join(items) + "]}"


def coordinates(rng, target_size):
    features = []
    size = 0
    while size < target_size:
        lon0, lat0 = rng.uniform(-180, 180), rng.uniform(-85, 85)
        ring = []
        for _ in range(rng.randint(8, 64)):
            lon = lon0 + rng.uniform(-0.5, 0.5)
            lat = lat0 + rng.uniform(-0.5, 0.5)
            digits = rng.choice([6, 7, 15, None])  # None: every digit of the double
            ring.append([lon if digits is None else round(lon, digits),
                         lat if digits is None else round(lat, digits)])
        feature = {"type": "Feature", "properties": {"elevation": rng.uniform(-400, 8800)},
                   "geometry": {"type": "Polygon", "coordinates": [ring]}}
        text = json.dumps(feature, separators=(",", ":"))
        features.append(text)
        size += len(text) + 1
    return '{"type":"FeatureCollection","features":[' + ",".join(features) + "]}"


def write(directory, name, text):
    with open(os.path.join(directory, name), "w", encoding="utf-8", newline="") as f:
        f.write(text)


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: make_json_corpora.py OUTPUT_DIRECTORY")
    directory = sys.argv[1]
    os.makedirs(directory, exist_ok=True)
    compact = {"separators": (",", ":"), "ensure_ascii": False}
    image_sizes = [1500000, 1300000, 1150000, 950000]
    write(directory, "a_answer.json",
          json.dumps(answer(random.Random(1), 500, image_sizes), **compact))
    text_only = answer(random.Random(1), 500, image_sizes)
    for image in text_only["Images"]:
        del image["Data"]
    write(directory, "a2_answer_text.json", json.dumps(text_only, **compact))
    write(directory, "b_small_objects.json", small_objects(random.Random(2), 5 * 1024 * 1024))
    write(directory, "c_coordinates.json", coordinates(random.Random(3), 2 * 1024 * 1024))
    write(directory, "d_small_answer.json",
          json.dumps(answer(random.Random(4), 3, [])["Biographic"] | {
              "Fields": [field_record(random.Random(5), i) for i in range(3)]}, indent=2))


if __name__ == "__main__":
    main()
