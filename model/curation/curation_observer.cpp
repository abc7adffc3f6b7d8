#include "curation_observer.h"

#include "curation.h"

Observing::Observing(curation& model, curation_observer& observer)
    : _observers(model.m_observers), _observer(&observer)
{
    _observers->push_back(_observer);
}

Observing::~Observing() { std::erase(*_observers, _observer); }
