"""Newest values for whoever asks, however late."""
import json

from orvane.serve.topics import Hub, Topic


class Counting:
    """A watcher that counts what it is told."""

    def __init__(self):
        self.told = 0

    def notice(self, topic):
        self.told += 1


class Marked(Topic):
    """A topic that knows whether it is watched."""

    watched = 0

    def begin(self):
        self.watched += 1

    def end(self):
        self.watched -= 1


def test_watcher_that_is_late_gets_the_newest_of_everything_once():
    topic = Topic()
    topic.put({"a": 1, "b": 1})
    version, _ = topic.since(0)
    for value in range(1000):
        topic.put({"a": value})
    version, text = topic.since(version)
    assert json.loads(text)["set"] == {"a": 999}
    assert topic.since(version) == (version, None)


def test_value_that_stays_the_same_tells_nobody():
    topic, watcher = Topic(), Counting()
    topic.watchers.add(watcher)
    topic.put({"a": 1})
    topic.put({"a": 1})
    assert watcher.told == 1


def test_message_is_made_once_for_all_who_want_the_same():
    topic = Topic()
    topic.put({"a": 1})
    assert topic.since(0)[1] is topic.since(0)[1]


def test_topic_that_keeps_some_values_drops_the_oldest():
    topic = Topic(keep=3)
    topic.put({str(number): number for number in range(5)})
    assert dict(topic.values) == {"2": 2, "3": 3, "4": 4}


def test_topic_lives_from_the_first_watcher_to_the_last():
    hub, first, second = Hub(), Counting(), Counting()
    topic = hub.watch(first, "it", Marked)
    assert hub.watch(second, "it", Marked) is topic
    hub.unwatch(first, topic)
    assert (topic.watched, len(hub)) == (1, 1)
    hub.unwatch(second, topic)
    hub.unwatch(second, topic)
    assert (topic.watched, len(hub)) == (0, 0)
